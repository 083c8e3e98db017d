#include "host/site/SiteFile.hpp"

#include <cstdlib>
#include <filesystem>

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class SiteFileTest : public testing::Test {
  protected:
    std::string path() const { return m_folder.path() + "/home.vigilsite"; }
    std::unique_ptr<SiteFile> fresh() const {
        EXPECT_TRUE(SiteFile::create(path()));
        return opened();
    }
    std::unique_ptr<SiteFile> opened(Access access = Access::Write) const {
        auto site = SiteFile::open(path(), access);
        EXPECT_TRUE(site) << (site ? "" : site.error().message);
        return site ? std::move(site).value() : nullptr;
    }
    SiteError refusal(Access access = Access::Read) const {
        auto site = SiteFile::open(path(), access);
        EXPECT_FALSE(site);
        return site ? SiteError() : site.error();
    }

    TemporaryFolder m_folder;
};

const StationRecord kRoof = {.name = "Roof",
                             .feed = "upload://127.0.0.1:8090/",
                             .usUnits = true,
                             .units = {{"windSpeed", "kn"}, {"barometer", "hPa"}},
                             .rolling = {"windSpeed mean 10", "rain age"}};

TEST_F(SiteFileTest, isMadeEmptyWithTheFoldersAboveIt) {
    const std::string deep = m_folder.path() + "/a/b/home.vigilsite";
    ASSERT_TRUE(SiteFile::create(deep));
    const auto site = SiteFile::open(deep, Access::Read);
    ASSERT_TRUE(site);
    EXPECT_TRUE(site.value()->stations().value().empty());
    EXPECT_TRUE(site.value()->plugIns().value().empty());
    EXPECT_TRUE(site.value()->effects().value().empty());
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(m_folder.path() + "/a/b")) {
        ++files;
        const auto rights = entry.status().permissions();
        EXPECT_EQ(rights & std::filesystem::perms(077), std::filesystem::perms::none) << entry.path();
    }
    EXPECT_GE(files, 1U);
}

TEST_F(SiteFileTest, isNotMadeInThePlaceOfAFileThatIsThere) {
    m_folder.write("home.vigilsite", "precious");
    const auto made = SiteFile::create(path());
    ASSERT_FALSE(made);
    EXPECT_EQ(made.error().message, path() + ": is there already, and was left as it is");
    EXPECT_EQ(std::filesystem::file_size(path()), 8U);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_folder.path()), {}), 1);
}

TEST_F(SiteFileTest, standsInTheUsersFolderForData) {
    setenv("XDG_DATA_HOME", "/data", 1);
    EXPECT_EQ(SiteFile::defaultFile(), "/data/vigil/home.vigilsite");
    setenv("XDG_DATA_HOME", "relative", 1);
    setenv("HOME", "/users/ann", 1);
    EXPECT_EQ(SiteFile::defaultFile(), "/users/ann/.local/share/vigil/home.vigilsite");
    unsetenv("XDG_DATA_HOME");
    EXPECT_EQ(SiteFile::defaultFile(), "/users/ann/.local/share/vigil/home.vigilsite");
}

TEST_F(SiteFileTest, aFileThatIsMissingIsNamedWithWhatMakesOne) {
    const SiteError error = refusal();
    EXPECT_EQ(error.kind, SiteError::Kind::NotThere);
    EXPECT_EQ(error.message, path() + ": there is no such site; `vigil site create` makes one");
}

TEST_F(SiteFileTest, anotherKindOfFileIsRefusedAndStaysAsItIs) {
    m_folder.write("home.vigilsite", std::string(5000, 'x'));
    EXPECT_EQ(refusal(Access::Write).kind, SiteError::Kind::NotASite);
    EXPECT_EQ(std::filesystem::file_size(path()), 5000U);
    m_folder.write("home.vigilsite", "");
    EXPECT_EQ(refusal(Access::Write).kind, SiteError::Kind::NotASite);
    EXPECT_EQ(std::filesystem::file_size(path()), 0U);
    { SQLite::Database(path(), SQLite::OPEN_READWRITE).exec("CREATE TABLE songs (name TEXT)"); }
    EXPECT_EQ(refusal(Access::Write).kind, SiteError::Kind::NotASite);
    SQLite::Database other(path());
    EXPECT_EQ(other.execAndGet("PRAGMA journal_mode").getString(), "delete");
}

TEST_F(SiteFileTest, aFolderInItsPlaceIsAFailureOfTheEnvironment) {
    m_folder.makeFolder("home.vigilsite");
    EXPECT_EQ(refusal().kind, SiteError::Kind::Environment);
}

TEST_F(SiteFileTest, aLaterFormatIsRefusedWithBothNumbers) {
    fresh();
    { SQLite::Database(path(), SQLite::OPEN_READWRITE).exec("PRAGMA user_version = 7"); }
    const SiteError error = refusal();
    EXPECT_EQ(error.kind, SiteError::Kind::TooNew);
    EXPECT_THAT(error.message, HasSubstr("(format 7, this one knows up to 2)"));
}

TEST_F(SiteFileTest, oneProcessWritesAndTheNextIsToldWhichWhileAnyMayRead) {
    const auto writing = fresh();
    ASSERT_TRUE(writing->addStation(kRoof));
    const pid_t child = fork();
    if (child == 0) {
        const auto second = SiteFile::open(path(), Access::Write);
        const bool told =
            !second && second.error().kind == SiteError::Kind::Locked &&
            second.error().message.find("process " + std::to_string(getppid())) != std::string::npos;
        const auto reading = SiteFile::open(path(), Access::Read);
        const bool read = reading && reading.value()->stations().value().size() == 1;
        _exit((told ? 1 : 0) + (read ? 2 : 0));
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 3);
}

TEST_F(SiteFileTest, aProcessThatWasKilledHoldsNoLock) {
    fresh();
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t child = fork();
    if (child == 0) {
        const auto held = SiteFile::open(path(), Access::Write);
        static_cast<void>(!write(ready[1], held ? "y" : "n", 1));
        pause();
    }
    char answer = 0;
    ASSERT_EQ(read(ready[0], &answer, 1), 1);
    ASSERT_EQ(answer, 'y');
    EXPECT_THAT(refusal(Access::Write).message, StartsWith(path() + ": process " + std::to_string(child)));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    EXPECT_TRUE(opened());
}

}  // namespace
}  // namespace vigil
