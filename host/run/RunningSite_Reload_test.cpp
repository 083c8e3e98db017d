#include <gmock/gmock.h>

#include "host/run/testing/RunningBench.hpp"
#include "host/site/HistoryReader.hpp"

namespace vigil {
namespace {

using testing::HasSubstr;
using testing::SizeIs;

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

TEST_F(Running, OneWhoseStationChangesGoesOnAsItIsAndNotAsItWasWrittenDownLast) {
    add("Kept", archive("windSpeed.unitValue > 1000", 1, "note.sh"));
    start();
    serveUntil([&] { return monitor("Kept").missed > 2; });
    EXPECT_EQ(m_file->plugInTitled("Kept").value()->archive.find("lastEvaluationDictionary"),
              std::string::npos)
        << "nothing has written it down yet";
    {
        auto editing = SiteFile::open(m_path, Access::Edit);
        ASSERT_TRUE(editing) << editing.error().message;
        auto station = *editing.value()->stationNamed("Roof").value();
        station.feed = "";
        ASSERT_TRUE(editing.value()->editStation(station));
    }
    m_site->reload();
    EXPECT_EQ(monitor("Kept").missed, 0U)
        << "another object stands for it now, and hears of nothing any more";
    end();
    open();
    EXPECT_THAT(m_file->plugInTitled("Kept").value()->archive, HasSubstr("lastEvaluationDictionary"));
}

TEST_F(Running, WhatAMonitorDidLastIsKnownAfterARestart) {
    add("Storm", archive("windSpeed.unitValue > -1", 60, "note.sh old"));
    start();
    serveUntil([&] { return monitor("Storm").lastResult == "succeeded"; });
    const auto fired = monitor("Storm").lastFire;
    ASSERT_TRUE(fired);
    end();
    open();
    start();
    EXPECT_EQ(monitor("Storm").lastAction, "note.sh old");
    EXPECT_EQ(monitor("Storm").lastResult, "succeeded");
    ASSERT_TRUE(monitor("Storm").lastFire);
    EXPECT_NEAR(monitor("Storm").lastFire->secondsSince(*fired), 0, 1e-6);
    end();
}

TEST_F(Running, WhatFailedBeforeThisRunIsShownAndIsNoProblemOfIt) {
    m_folder.write("scripts/note.sh", "#!/bin/sh\nexit 3\n");
    add("Storm", archive("windSpeed.unitValue > -1", 60, "note.sh"));
    start();
    serveUntil([&] { return monitor("Storm").lastFailed; });
    EXPECT_THAT(m_site->status().problems, testing::Contains(HasSubstr("Storm")));
    end();
    open();
    start();
    EXPECT_TRUE(monitor("Storm").lastFailed);
    EXPECT_THAT(m_site->status().problems, testing::Not(testing::Contains(HasSubstr("Storm"))));
    end();
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
