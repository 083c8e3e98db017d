#include "host/site/FileOwner.hpp"

#include <filesystem>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "host/site/SiteFile.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

constexpr uid_t kNobody = 65534;

class FileOwners : public testing::Test {
  protected:
    FileOwners() { ::chmod(m_folder.path().c_str(), 0755); }
    std::string site() const { return m_folder.path() + "/home.vigilsite"; }
    /// Ends with 0 where opening is refused with that sentence for somebody who may not; the superuser may
    /// everything, so nobody looks, in a process of its own.
    int refused(const std::string& sentence, Access access) const {
        if (::geteuid() == 0 && ::setuid(kNobody) != 0) return 2;
        const auto opened = SiteFile::open(site(), access);
        if (opened) return 3;
        const std::string& said = opened.error().message;
        if (said == site() + ": " + sentence) return 0;
        std::fprintf(stderr, "%s\n", said.c_str());
        return 1;
    }
    std::string whose(const std::string& what, const std::string& mode) const {
        return ::geteuid() == 0
                   ? what + "belongs to user root, mode " + mode + "; run this as that user"
                   : what + "belongs to you, mode " + mode + "; chmod gives you the right to use it";
    }

    TemporaryFolder m_folder;
};

TEST_F(FileOwners, areNamedWhereTheFileMayNotBeRead) {
    ASSERT_TRUE(SiteFile::create(site()));
    ::chmod(site().c_str(), ::geteuid() == 0 ? 0600 : 0000);
    const std::string said = whose("it ", ::geteuid() == 0 ? "600" : "0");
    EXPECT_EXIT(_exit(refused(said, Access::Read)), testing::ExitedWithCode(0), "");
}

TEST_F(FileOwners, areNamedWhereTheFileMayBeReadButNotWritten) {
    ASSERT_TRUE(SiteFile::create(site()));
    ::chmod(site().c_str(), 0444);
    EXPECT_EXIT(_exit(refused(whose("it ", "444"), Access::Edit)), testing::ExitedWithCode(0), "");
}

TEST_F(FileOwners, areNamedWhereTheFolderMayNotBeEntered) {
    ASSERT_TRUE(SiteFile::create(site()));
    ::chmod(m_folder.path().c_str(), 0600);
    EXPECT_EXIT(_exit(refused(whose("its folder " + m_folder.path() + " ", "600"), Access::Read)),
                testing::ExitedWithCode(0), "");
    ::chmod(m_folder.path().c_str(), 0755);
}

TEST_F(FileOwners, areNotSpokenOfWhereThereIsNoFileOrNothingForbidden) {
    EXPECT_FALSE(notAllowed(site(), true));
    ASSERT_TRUE(SiteFile::create(site()));
    EXPECT_FALSE(notAllowed(site(), true));
}

}  // namespace
}  // namespace vigil
