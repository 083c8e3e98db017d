#include "host/site/SiteFile.hpp"

#include <cstdlib>
#include <filesystem>

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "host/site/SiteWriter.hpp"
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
    setenv("HOME", "/home/ann", 1);
    EXPECT_EQ(SiteFile::defaultFile(), "/home/ann/.local/share/vigil/home.vigilsite");
    unsetenv("XDG_DATA_HOME");
    EXPECT_EQ(SiteFile::defaultFile(), "/home/ann/.local/share/vigil/home.vigilsite");
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
    EXPECT_THAT(error.message, HasSubstr("(format 7, this one knows up to 1)"));
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

TEST_F(SiteFileTest, stationsKeepAllThatTheyAre) {
    const auto added = fresh()->addStation(kRoof);
    ASSERT_TRUE(added) << added.error().message;
    const auto site = opened();
    ASSERT_EQ(site->stations().value().size(), 1U);
    StationRecord read = site->stations().value()[0];
    EXPECT_EQ(read.name, "Roof");
    EXPECT_EQ(read.feed, "upload://127.0.0.1:8090/");
    EXPECT_TRUE(read.usUnits);
    EXPECT_EQ(read.units, kRoof.units);
    EXPECT_EQ(read.rolling, kRoof.rolling);
    read.name = "Dach \"Ä\"";
    read.feed.clear();
    read.usUnits = false;
    read.units = {};
    read.rolling = {};
    ASSERT_TRUE(site->editStation(read));
    EXPECT_FALSE(site->stationNamed("Roof").value());
    const auto renamed = site->stationNamed("Dach \"Ä\"").value();
    ASSERT_TRUE(renamed);
    EXPECT_EQ(renamed->id, read.id);
    EXPECT_EQ(renamed->feed, "");
    EXPECT_FALSE(renamed->usUnits);
    EXPECT_TRUE(renamed->units.empty());
    EXPECT_TRUE(renamed->rolling.empty());
}

TEST_F(SiteFileTest, namesAndTitlesStandOnceAndAreNotEmpty) {
    const auto site = fresh();
    const RecordId roof = site->addStation(kRoof).value();
    const RecordId pond = site->addStation({.name = "Pond"}).value();
    EXPECT_EQ(site->addStation(kRoof).error().message, "a station is called \"Roof\" already");
    EXPECT_EQ(site->editStation({.id = pond, .name = "Roof"}).error().message,
              "a station is called \"Roof\" already");
    EXPECT_EQ(site->addStation({}).error().message, "a station needs a name");
    EXPECT_EQ(site->editStation({.id = 99, .name = "X"}).error().message,
              "there is no such station any more");
    ASSERT_TRUE(site->addPlugIn({.station = roof, .title = "Frost", .archive = "{}"}));
    const RecordId gale = site->addPlugIn({.station = roof, .title = "Gale", .archive = "{}"}).value();
    EXPECT_EQ(site->addPlugIn({.station = pond, .title = "Frost"}).error().message,
              "a monitor is called \"Frost\" already");
    EXPECT_EQ(site->editPlugIn({.id = gale, .title = "Frost"}).error().message,
              "a monitor is called \"Frost\" already");
    EXPECT_EQ(site->addPlugIn({.station = roof}).error().message, "a monitor needs a title");
    EXPECT_EQ(site->addPlugIn({.station = 99, .title = "T"}).error().message,
              "there is no such station any more");
    EXPECT_EQ(site->editPlugIn({.id = 99, .title = "T"}).error().message,
              "the monitor is gone, or somebody else has changed it meanwhile");
    EXPECT_EQ(site->removePlugIn(99).error().message, "there is no such monitor any more");
    EXPECT_EQ(site->removeStation(99).error().message, "there is no such station any more");
}

TEST_F(SiteFileTest, anEditOfAPlugInSetsTitleAndArchiveAndNothingElse) {
    const auto site = fresh();
    const RecordId roof = site->addStation(kRoof).value();
    const PlugInRecord made = {
        .station = roof, .className = "Monitor", .title = "Frost", .archive = "{\"a\":1}"};
    const RecordId id = site->addPlugIn(made).value();
    ASSERT_TRUE(
        site->editPlugIn({.id = id, .station = 77, .className = "Other", .title = "Ice", .archive = "{}"}));
    const auto read = site->plugInTitled("Ice").value();
    ASSERT_TRUE(read);
    EXPECT_EQ(read->station, roof);
    EXPECT_EQ(read->className, "Monitor");
    EXPECT_EQ(read->archive, "{}");
    EXPECT_FALSE(site->plugInTitled("Frost").value());
    EXPECT_EQ(read->edition, 1);
    EXPECT_FALSE(site->editPlugIn({.id = id, .title = "Snow"})) << "made from what it was before";
    ASSERT_TRUE(site->editPlugIn(*read));
    EXPECT_EQ(site->plugInTitled("Ice").value()->edition, 2);
}

TEST_F(SiteFileTest, isEditedWhileAnotherProcessRunsItAndThatOnesOlderStateIsRefused) {
    const auto running = fresh();
    const RecordId roof = running->addStation(kRoof).value();
    ASSERT_TRUE(running->addPlugIn({.station = roof, .title = "Frost", .archive = "{}"}));
    const PlugInRecord known = running->plugInTitled("Frost").value().value();
    {
        const auto editing = opened(Access::Edit);
        EXPECT_EQ(editing->runner(), getpid());
        PlugInRecord changed = known;
        changed.archive = "{\"changed\":true}";
        ASSERT_TRUE(editing->editPlugIn(changed));
    }
    SiteWriter writer(*running);
    std::vector<std::string> told;
    const auto note = [&](const Result<Done>& done) { told.push_back(done ? "" : done.error().message); };
    PlugInRecord state = known;
    state.archive = "{\"wait\":1}";
    writer.putFire({.id = 1, .plugIn = known.id}, note);
    writer.saveArchive(state, note);
    writer.completeFire(1, state, note);
    state.edition = 1;
    writer.saveArchive(state, note);
    writer.stop();
    ASSERT_EQ(told.size(), 4U);
    EXPECT_THAT(told[1], HasSubstr("changed meanwhile"));
    EXPECT_THAT(told[2], HasSubstr("changed meanwhile"));
    EXPECT_EQ(told[3], "");
    EXPECT_FALSE(running->fire(1).value()->completed);
    EXPECT_EQ(running->plugInTitled("Frost").value()->edition, 1) << "a run's own saving is no edit";
}

TEST_F(SiteFileTest, whoEditsWithNobodyElseThereHoldsItAndLeavesItClean) {
    fresh();
    {
        const auto editing = opened(Access::Edit);
        EXPECT_EQ(editing->runner(), 0);
        EXPECT_EQ(refusal(Access::Write).kind, SiteError::Kind::Locked);
        ASSERT_TRUE(editing->addStation(kRoof));
        EXPECT_FALSE(editing->summary().value().clean);
    }
    EXPECT_TRUE(opened(Access::Read)->summary().value().clean);
}

TEST_F(SiteFileTest, countsItsRows) {
    const auto site = fresh();
    const RecordId roof = site->addStation(kRoof).value();
    const RecordId frost = site->addPlugIn({.station = roof, .title = "Frost"}).value();
    {
        SiteWriter writer(*site);
        writer.putFire({.id = 1, .plugIn = frost});
        writer.putFire({.id = 2, .plugIn = frost, .completed = true});
        writer.putEffect({.id = 3, .queued = Date(30)});
        writer.putEffect({.id = 4, .state = EffectRecord::Ended, .queued = Date(20)});
    }
    const SiteSummary summary = site->summary().value();
    EXPECT_EQ(summary.version, 1);
    EXPECT_GT(summary.bytes, 4096U);
    EXPECT_EQ(summary.stations, 1U);
    EXPECT_EQ(summary.plugIns, 1U);
    EXPECT_EQ(summary.fires, 2U);
    EXPECT_EQ(summary.openFires, 1U);
    EXPECT_EQ(summary.effects, 2U);
    EXPECT_EQ(summary.openEffects, 1U);
    EXPECT_EQ(summary.oldest, Date(20));
    EXPECT_FALSE(summary.clean);
}

TEST_F(SiteFileTest, aStationTakesItsPlugInsAlongAndIdsAreNeverGivenAgain) {
    const auto site = fresh();
    const RecordId roof = site->addStation(kRoof).value();
    const RecordId pond = site->addStation({.name = "Pond"}).value();
    ASSERT_TRUE(site->addPlugIn({.station = roof, .title = "Gone"}));
    ASSERT_TRUE(site->addPlugIn({.station = pond, .title = "Stays"}));
    const RecordId last = site->addPlugIn({.station = roof, .title = "Gone too"}).value();
    ASSERT_TRUE(site->removeStation(roof));
    ASSERT_EQ(site->plugIns().value().size(), 1U);
    EXPECT_EQ(site->plugIns().value()[0].title, "Stays");
    ASSERT_TRUE(site->removeStation(pond));
    EXPECT_GT(site->addStation({.name = "New"}).value(), pond);
    const RecordId owner = site->stationNamed("New").value()->id;
    EXPECT_GT(site->addPlugIn({.station = owner, .title = "New"}).value(), last);
}

TEST_F(SiteFileTest, whatWasOpenedForReadingTakesNoChange) {
    fresh();
    const auto site = opened(Access::Read);
    const auto added = site->addStation(kRoof);
    ASSERT_FALSE(added);
    EXPECT_THAT(added.error().message, StartsWith(path() + ": it may not be written"));
}

}  // namespace
}  // namespace vigil
