#include "host/kit/HostedPlugIns.hpp"

#include <thread>

#include <gmock/gmock.h>

#include "host/kit/LiveWorld.hpp"
#include "host/kit/StandardLog.hpp"
#include "host/kit/testing/HostedBench.hpp"
#include "host/services/Mailbox.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;

class HostedPlugInsTest : public HostedPlugInTest {
  protected:
    HostedPlugIns all{world};
};

TEST_F(HostedPlugInsTest, AMonitorThatThrewIsStoppedAndMarkedAndTheOthersGoOn) {
    const auto good = monitor("Calm");
    HostedPlugIn& bad = all.add(plugIn);
    all.add(good).start();
    bad.start();
    plugIn->throws = true;
    all.settle(announce());
    all.settle(announce());
    EXPECT_EQ(plugIn->fires, 1);
    EXPECT_EQ(good->fires, 2);
    EXPECT_FALSE(bad.isStarted());
    EXPECT_EQ(bad.failure(), "row 3");
    EXPECT_EQ(all.find(*good)->failure(), std::nullopt);
    EXPECT_EQ(world.log().lines(),
              (std::vector<RecordingLog::Line>{{kLogProblem, "\"Storm\" failed and is stopped: row 3"}}));
}

TEST_F(HostedPlugInsTest, AMarkedMonitorRunsAgainOnceItsSwitchIsTurnedOnOrItIsStarted) {
    HostedPlugIn& bad = all.add(plugIn);
    bad.start();
    plugIn->throws = true;
    all.settle(announce());
    plugIn->throws = false;
    EXPECT_TRUE(bad.setEvaluating(true));
    EXPECT_EQ(bad.failure(), std::nullopt);
    announce();
    EXPECT_EQ(plugIn->fires, 2);
}

TEST_F(HostedPlugInsTest, AMonitorWhoseStopFailsTooIsMarkedAllTheSame) {
    HostedPlugIn& bad = all.add(plugIn);
    bad.start();
    plugIn->throws = plugIn->throwsOnStop = true;
    all.settle(announce());
    EXPECT_EQ(bad.failure(), "row 3");
    EXPECT_EQ(world.log().lines()[0].message,
              "\"Storm\" failed and is stopped: row 3 (it does not stop and may go on: stuck)");
    plugIn->throwsOnStop = false;
}

TEST_F(HostedPlugInsTest, AnObserverThatIsNoPlugInIsALineInTheLog) {
    all.settle({{std::make_shared<FakeObstacle>(), std::make_exception_ptr(std::runtime_error("odd"))}});
    ASSERT_EQ(world.log().lines().size(), 1U);
    EXPECT_THAT(world.log().lines()[0].message, testing::EndsWith("failed: odd"));
}

TEST_F(HostedPlugInsTest, ARefusedHandOverIsNobodysFailureAlsoWhereItCanStillBeSettled) {
    HostedPlugIn& running = all.add(plugIn);
    running.start();
    all.settle({{plugIn, std::make_exception_ptr(HandOverRefused())}});
    EXPECT_TRUE(running.isStarted());
    EXPECT_EQ(running.failure(), std::nullopt);
    EXPECT_TRUE(world.log().lines().empty());
}

TEST_F(HostedPlugInsTest, RemovingStopsAndUnloadsAndDropsThePlugIn) {
    all.add(plugIn).start();
    plugIn->calls.clear();
    EXPECT_EQ(all.remove(*plugIn), nullptr);
    EXPECT_THAT(plugIn->calls, ElementsAre("stop on", "willUnload on"));
    EXPECT_EQ(all.find(*plugIn), nullptr);
    EXPECT_EQ(all.remove(*plugIn), nullptr);
}

TEST_F(HostedPlugInsTest, OneThatThrowsAsItLeavesLeavesAllTheSameAndThatIsSaid) {
    all.add(plugIn).start();
    plugIn->throwsOnUnload = true;
    EXPECT_EQ(all.remove(*plugIn), nullptr);
    EXPECT_EQ(all.find(*plugIn), nullptr);
    ASSERT_EQ(world.log().lines().size(), 1U);
    EXPECT_EQ(world.log().lines()[0].message, "\"Storm\" failed as it was unloaded: no end");
}

TEST_F(HostedPlugInsTest, APlugInThatCannotBeStoppedStays) {
    all.add(plugIn).start();
    world.plugInHost().onStop = std::make_shared<FakeObstacle>();
    EXPECT_EQ(all.remove(*plugIn), world.plugInHost().onStop);
    EXPECT_NE(all.find(*plugIn), nullptr);
}

TEST(HostedPlugInsClosing, AHandOverRefusedByTheClosingMarksNobody) {
    RecordingLog log;
    FakeInterfaceFiles interfaceFiles;
    LiveWorld world(log, interfaceFiles, "/scripts");
    RecordedScripts scripts(world);
    const auto station = std::make_shared<Station>(world, "roof", scripts);
    const auto plugIn = makePlugIn<HostedMonitor>(station, nullptr);
    HostedPlugIns all(world);
    HostedPlugIn& hosted = all.add(plugIn);
    world.mailbox().close();
    std::thread feed([&] {
        try {
            world.mainQueue().dispatchSync([] {});
        } catch (...) {
            all.settle({{plugIn, std::current_exception()}});
        }
        // Another failure cannot be settled any more, and does not hang.
        all.settle({{plugIn, std::make_exception_ptr(std::runtime_error("late"))}});
    });
    feed.join();
    EXPECT_EQ(hosted.failure(), std::nullopt);
    EXPECT_TRUE(log.lines().empty());
}

}  // namespace
}  // namespace vigil
