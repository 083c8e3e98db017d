#include <gmock/gmock.h>

#include "host/run/testing/RunningBench.hpp"

namespace vigil {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

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
    EXPECT_THAT(logged(), HasSubstr("has not completed its fire of"));
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

TEST_F(Running, AScriptThatIsNotThereIsInTheLedgerAndInTheStatus) {
    add("Mistyped", archive("windSpeed.unitValue > -1", 60, "nots.sh roof"));
    start();
    serveUntil([&] { return monitor("Mistyped").lastFailed; });
    EXPECT_EQ(monitor("Mistyped").lastAction, "nots.sh");
    end();
    open();
    const auto effects = m_file->effects().value();
    ASSERT_THAT(effects, SizeIs(1));
    EXPECT_EQ(effects[0].result, "not started");
    EXPECT_THAT(effects[0].detail, HasSubstr("No such file"));
    EXPECT_NE(effects[0].fire, 0);
}

TEST_F(Running, AStationWithAFeedThatIsNoneIsToldAndTheOthersRun) {
    ASSERT_TRUE(m_file->addStation({.name = "Wrong", .feed = "gopher:"}));
    add("Whole", archive("windSpeed.unitValue > 1000", 1, "note.sh"));
    start();
    serveUntil([&] { return monitor("Whole").missed > 0; });
    EXPECT_THAT(m_site->status().problems, testing::Contains(HasSubstr("Wrong: ")));
    end();
}

}  // namespace
}  // namespace vigil
