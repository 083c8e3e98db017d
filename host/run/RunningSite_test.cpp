#include "host/run/RunningSite.hpp"

#include <functional>
#include <thread>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "host/services/testing/ScriptBench.hpp"
#include "host/site/HistoryReader.hpp"
#include "tests/support/RecordingLog.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

using testing::AnyOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// A monitor's archive: with a condition and one script row.
std::string archive(const std::string& condition, int minutes, const std::string& script) {
    return R"({"format":"vigil-archive","version":1,"root":{"$class":"QRVVigilPlugIn","$id":1,)"
           R"("agent":{"$station":true},"title":"","ruleEdStoredCriteria":[[{"$class":"RunScriptCriterion","$id":2,)"
           R"("agent":{"$station":true},"name":"Run script","children":[{"$class":"TextFieldCriterion","$id":3,)"
           R"("agent":{"$station":true}}]},{"$ref":3}]],"ruleEdStoredDisplayValues":[["Run script",)"
           R"({"$class":"TextField","$id":4,"stringValue":")" +
           script + R"("}]],"evaluating":true,"retriggerInterval":)" + std::to_string(minutes) +
           R"(,"triggerOnlyOnChange":false,"predicate":{"$class":"ConditionPredicate","$id":5,"text":")" +
           condition + "\"}}}";
}

class Running : public testing::Test {
  protected:
    Running() {
        EXPECT_TRUE(SiteFile::create(m_path));
        open();
        m_station = m_file->addStation({.name = "Roof", .feed = "simulated:?speed=30000"}).value();
        m_folder.makeFolder("scripts");
        m_folder.write("scripts/note.sh", "#!/bin/sh\necho \"$1\" >> " + m_folder.path() + "/noted\n");
    }
    ~Running() override { m_site.reset(); }

    void open() {
        auto opened = SiteFile::open(m_path, Access::Write);
        ASSERT_TRUE(opened) << opened.error().message;
        m_file = std::move(opened).value();
    }
    RecordId add(const std::string& title, const std::string& archive) {
        const auto id = m_file->addPlugIn(
            {.station = m_station, .className = "QRVVigilPlugIn", .title = title, .archive = archive});
        EXPECT_TRUE(id);
        return id ? id.value() : 0;
    }
    void start() {
        auto site = RunningSite::make(*m_file, m_log,
                                      {.programFolder = VIGIL_BINARY_DIR "/bin",
                                       .scriptsFolder = m_folder.path() + "/scripts",
                                       .version = "1"});
        ASSERT_TRUE(site) << site.error().message;
        m_site = std::move(site).value();
        m_site->start();
    }
    /// Serves the site until that holds.
    void serveUntil(const std::function<bool()>& holds) {
        const auto end = std::chrono::steady_clock::now() + kPatience;
        while (!holds()) {
            ASSERT_LT(std::chrono::steady_clock::now(), end) << "waited in vain";
            m_site->mailbox().serveUntil(std::chrono::steady_clock::now() + std::chrono::milliseconds(20));
            m_site->tick();
        }
    }
    MonitorStatus monitor(const std::string& title) {
        for (const StationStatus& station : m_site->status().stations)
            for (const MonitorStatus& one : station.monitors)
                if (one.title == title) return one;
        return {};
    }
    void end() {
        m_site->stop();
        m_site.reset();
        m_file.reset();
    }
    std::string logged() {
        std::string text;
        for (const auto& line : m_log.lines())
            text += line.message + "\n";
        return text;
    }

    TemporaryFolder m_folder;
    const std::string m_path = m_folder.path() + "/home.vigilsite";
    RecordingLog m_log;
    std::unique_ptr<SiteFile> m_file;
    std::unique_ptr<RunningSite> m_site;
    RecordId m_station = 0;
};

TEST_F(Running, AMonitorThatFiresActsOnceAndWaitsAlsoInTheNextRun) {
    add("Always", archive("windSpeed.unitValue > -1", 60, "note.sh roof"));
    start();
    serveUntil([&] { return monitor("Always").lastResult == "succeeded"; });
    EXPECT_EQ(monitor("Always").state, "waiting");
    EXPECT_EQ(monitor("Always").lastAction, "note.sh roof");
    EXPECT_EQ(fileText(m_folder.path() + "/noted"), "roof\n");
    end();
    open();
    EXPECT_THAT(m_file->openLedger(Date(1)).value().fires, IsEmpty()) << "the fire is complete";
    start();
    serveUntil([&] { return monitor("Always").waiting > 3; });
    EXPECT_EQ(monitor("Always").state, "waiting");
    EXPECT_EQ(fileText(m_folder.path() + "/noted"), "roof\n");
    end();
    open();
    const auto effects = m_file->effects().value();
    ASSERT_THAT(effects, SizeIs(1));
    EXPECT_EQ(effects[0].result, "succeeded");
    EXPECT_NE(effects[0].fire, 0);
}

TEST_F(Running, AFireWithoutItsCompletionIsWaitedOutFromItsOwnTime) {
    const RecordId id = add("Always", archive("windSpeed.unitValue > -1", 60, "note.sh roof"));
    const Date when = Date::fromUnix(
        std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count() - 600);
    {
        SiteWriter writer(*m_file);
        writer.putFire({.id = writer.newId(), .plugIn = id, .time = when});
        writer.stop();
    }
    start();
    serveUntil([&] { return monitor("Always").waiting > 2; });
    const auto until = monitor("Always").waitsUntil;
    ASSERT_TRUE(until);
    EXPECT_NEAR(until->secondsSince(when), 3600, 1e-3);
    EXPECT_EQ(monitor("Always").fired, 0u);
    EXPECT_THAT(logged(), HasSubstr("was in the middle of a fire"));
    end();
    EXPECT_THAT(fileText(m_folder.path() + "/noted"), IsEmpty());
}

TEST_F(Running, OneThatCannotBeRestoredIsToldAndLeavesAllOthersRunning) {
    add("Broken", "{\"format\":\"vigil-archive\"");
    add("Whole", archive("windSpeed.unitValue > 1000", 1, "note.sh"));
    start();
    serveUntil([&] { return monitor("Whole").missed > 0; });
    EXPECT_EQ(monitor("Broken").state, "failed");
    EXPECT_THAT(monitor("Broken").words, HasSubstr("cannot be restored"));
    EXPECT_EQ(monitor("Whole").state, "watching");
    EXPECT_THAT(m_site->status().problems, SizeIs(1));
    end();
    open();
    EXPECT_EQ(m_file->plugInTitled("Broken").value()->archive, "{\"format\":\"vigil-archive\"")
        << "what could not be read is kept as it was";
}

TEST_F(Running, OneWhoseReadingNeverComesSaysSo) {
    add("Blind", archive("noSuchReading.unitValue > 1 OR windSpeed.unitValue > 1000", 1, "note.sh"));
    start();
    serveUntil([&] { return monitor("Blind").missed > 0; });
    EXPECT_EQ(monitor("Blind").words, "cannot be judged: no reading noSuchReading");
    end();
}

TEST_F(Running, AnActionThatCannotBeHadIsInTheLedgerAsFailed) {
    m_folder.write("scripts/fails.sh", "#!/bin/sh\necho oh no\nexit 3\n");
    add("Fails", archive("windSpeed.unitValue > -1", 60, "fails.sh"));
    start();
    serveUntil([&] { return monitor("Fails").lastFailed; });
    EXPECT_THAT(m_site->status().problems, testing::Contains(HasSubstr("fails.sh failed")));
    end();
    open();
    const auto effects = m_file->effects().value();
    ASSERT_THAT(effects, SizeIs(1));
    EXPECT_EQ(effects[0].result, "failed");
    EXPECT_THAT(effects[0].detail, testing::AllOf(HasSubstr("exit code 3"), HasSubstr("oh no")));
}

TEST_F(Running, AStationWithAFeedThatIsNoneIsToldAndTheOthersRun) {
    ASSERT_TRUE(m_file->addStation({.name = "Wrong", .feed = "gopher:"}));
    add("Whole", archive("windSpeed.unitValue > 1000", 1, "note.sh"));
    start();
    serveUntil([&] { return monitor("Whole").missed > 0; });
    EXPECT_THAT(m_site->status().problems, testing::Contains(HasSubstr("Wrong: ")));
    end();
}

TEST_F(Running, WhatIsChangedInTheFileIsTakenOverAndTheRestGoesOn) {
    add("Kept", archive("windSpeed.unitValue > 1000", 1, "note.sh"));
    const RecordId gone = add("Gone", archive("windSpeed.unitValue > 1000", 1, "note.sh"));
    start();
    serveUntil([&] { return monitor("Kept").missed > 2; });
    {
        auto editing = SiteFile::open(m_path, Access::Edit);
        ASSERT_TRUE(editing) << editing.error().message;
        ASSERT_TRUE(editing.value()->removePlugIn(gone));
        ASSERT_TRUE(
            editing.value()->addPlugIn({.station = m_station,
                                        .className = "QRVVigilPlugIn",
                                        .title = "New",
                                        .archive = archive("windSpeed.unitValue > -1", 60, "note.sh new")}));
    }
    const auto before = monitor("Kept").missed;
    m_site->reload();
    serveUntil([&] { return monitor("New").fired == 1; });
    EXPECT_EQ(monitor("Gone").title, "");
    EXPECT_GE(monitor("Kept").missed, before) << "it did not begin anew";
    end();
}

TEST_F(Running, OneThatIsChangedBeginsAnewAndKeepsItsWait) {
    const RecordId id = add("Changed", archive("windSpeed.unitValue > -1", 60, "note.sh old"));
    start();
    serveUntil([&] { return monitor("Changed").lastResult == "succeeded"; });
    const auto until = monitor("Changed").waitsUntil;
    ASSERT_TRUE(until);
    {
        auto editing = SiteFile::open(m_path, Access::Edit);
        ASSERT_TRUE(editing) << editing.error().message;
        auto record = *editing.value()->plugInTitled("Changed").value();
        EXPECT_EQ(record.id, id);
        record.archive = archive("windSpeed.unitValue > -2", 60, "note.sh new");
        ASSERT_TRUE(editing.value()->editPlugIn(record));
    }
    m_site->reload();
    EXPECT_EQ(monitor("Changed").condition, "windSpeed.unitValue > -2");
    EXPECT_EQ(monitor("Changed").waitsUntil, until);
    serveUntil([&] { return monitor("Changed").waiting > 2; });
    EXPECT_EQ(fileText(m_folder.path() + "/noted"), "old\n");
    end();
    open();
    const auto record = m_file->plugInTitled("Changed").value();
    EXPECT_THAT(record->archive, HasSubstr("windSpeed.unitValue > -2"));
}

TEST_F(Running, TheHistoryKnowsNotificationsFiresAndWhoWatched) {
    const RecordId id = add("Always", archive("windSpeed.unitValue > -1", 60, "note.sh"));
    start();
    serveUntil([&] { return monitor("Always").waiting > 5; });
    end();
    const auto reader = HistoryReader::open(m_path);
    ASSERT_TRUE(reader) << reader.error().message;
    const auto stations = reader.value()->stations().value();
    ASSERT_THAT(stations, SizeIs(1));
    EXPECT_EQ(stations[0].name, "Roof");
    EXPECT_GT(stations[0].notifications, 5u);
    const auto fires = reader.value()->fires(id).value();
    ASSERT_THAT(fires, SizeIs(1));
    EXPECT_LE(fires[0].started, fires[0].actionsBegan);
    EXPECT_LE(fires[0].actionsBegan, fires[0].actionsEnded);
    const auto watches = reader.value()->watches(id).value();
    ASSERT_THAT(watches, SizeIs(1));
    EXPECT_EQ(watches[0].ended, WatchReason::Run);
}

}  // namespace
}  // namespace vigil
