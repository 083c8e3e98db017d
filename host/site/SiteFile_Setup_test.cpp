#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "host/site/SiteFile.hpp"
#include "host/site/SiteWriter.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class SiteRowsTest : public testing::Test {
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

TEST_F(SiteRowsTest, stationsKeepAllThatTheyAre) {
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

TEST_F(SiteRowsTest, namesAndTitlesStandOnceAndAreNotEmpty) {
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

TEST_F(SiteRowsTest, anEditOfAPlugInSetsTitleAndArchiveAndNothingElse) {
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

TEST_F(SiteRowsTest, isEditedWhileAnotherProcessRunsItAndThatOnesOlderStateIsRefused) {
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

TEST_F(SiteRowsTest, whoEditsWithNobodyElseThereHoldsItAndLeavesItClean) {
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

TEST_F(SiteRowsTest, countsItsRows) {
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
    EXPECT_EQ(summary.version, 2);
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

TEST_F(SiteRowsTest, aStationTakesItsPlugInsAlongAndIdsAreNeverGivenAgain) {
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

TEST_F(SiteRowsTest, whatWasOpenedForReadingTakesNoChange) {
    fresh();
    const auto site = opened(Access::Read);
    const auto added = site->addStation(kRoof);
    ASSERT_FALSE(added);
    EXPECT_THAT(added.error().message, StartsWith(path() + ": it may not be written"));
}

}  // namespace
}  // namespace vigil
