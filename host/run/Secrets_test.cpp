#include "host/run/Secrets.hpp"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

using testing::HasSubstr;

class SecretsFile : public testing::Test {
  protected:
    Secrets write(const std::string& text, mode_t mode = 0600) {
        const std::string path = m_folder.write("secrets", text);
        EXPECT_EQ(::chmod(path.c_str(), mode), 0);
        return Secrets(path);
    }
    TemporaryFolder m_folder;
};

TEST_F(SecretsFile, ANameHasTheValueBehindItsEqualsSign) {
    const Secrets secrets = write("# mine\n\nbroker = a=b c \r\nmail=x\n");
    EXPECT_EQ(secrets.named("broker").value(), "a=b c");
    EXPECT_EQ(secrets.named("mail").value(), "x");
    EXPECT_EQ(secrets.named("other").value(), std::nullopt);
}

TEST_F(SecretsFile, OneThatOthersMayReadIsRefused) {
    for (const mode_t mode : {mode_t{0640}, mode_t{0604}, mode_t{0620}}) {
        const auto secret = write("broker = x\n", mode).named("broker");
        ASSERT_FALSE(secret) << std::oct << mode;
        EXPECT_THAT(secret.error().message, HasSubstr("chmod 600"));
    }
}

TEST_F(SecretsFile, ALineWithoutAnEqualsSignIsAnErrorWithItsPlaceAndWithoutItsText) {
    const auto secret = write("a = 1\nhunter2\n").named("broker");
    ASSERT_FALSE(secret);
    EXPECT_THAT(secret.error().message, HasSubstr("secrets:2: "));
    EXPECT_THAT(secret.error().message, testing::Not(HasSubstr("hunter2")));
}

TEST_F(SecretsFile, OneThatMayNotBeReadIsNoFileWithoutTheName) {
    const Secrets secrets = write("broker = x\n", 0200);
    // Root may read everything, so for a moment this is somebody else.
    constexpr uid_t kNobody = 65534;
    const uid_t own = ::geteuid();
    if (own == 0) {
        ASSERT_EQ(::chmod(m_folder.path().c_str(), 0755), 0);
        ASSERT_EQ(::seteuid(kNobody), 0);
    }
    const auto secret = secrets.named("broker");
    ASSERT_EQ(::seteuid(own), 0);
    ASSERT_FALSE(secret);
    EXPECT_THAT(secret.error().message, HasSubstr("Permission denied"));
}

TEST_F(SecretsFile, OneThatIsNotThereSaysWhatToWrite) {
    const auto secret = Secrets(m_folder.path() + "/none").named("broker");
    ASSERT_FALSE(secret);
    EXPECT_THAT(secret.error().message, HasSubstr("broker = VALUE"));
}

}  // namespace
}  // namespace vigil
