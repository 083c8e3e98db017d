#include "host/kit/HostedPlugIn.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/kit/HostedPlugIns.hpp"
#include "host/kit/LiveWorld.hpp"
#include "host/kit/RecordedScripts.hpp"
#include "host/kit/StandardLog.hpp"
#include "host/kit/Station.hpp"
#include "host_contract/QRVKit.hpp"
#include "platform/InterfaceOwner.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;

/// A monitor that only notes what is asked of it, in the manner of a real one: it listens from a start to a
/// stop that each find it switched on.
class Monitor : public QRVPlugIn, public InterfaceOwner {
  public:
    std::string className() const override { return "HostedTestMonitor"; }
    InterfaceOwner* interfaceOwner() override { return hasSwitch ? this : nullptr; }
    const InterfaceTable& interfaceTable() const override {
        static const InterfaceTable table{
            {{"evaluating", [](InterfaceOwner& owner) { return Value(static_cast<Monitor&>(owner).on); },
              [](InterfaceOwner& owner, const Value& value) {
                  auto& self = static_cast<Monitor&>(owner);
                  self.calls.push_back("set");
                  return self.takesSwitch && (self.on = *value.as<bool>(), true);
              }}},
            {},
            {}};
        return table;
    }
    std::shared_ptr<Object> start() override {
        note("start");
        if (auto obstacle = QRVPlugIn::start()) return obstacle;
        if (on)
            agent()->world().notificationCenter().addObserver(
                std::static_pointer_cast<Monitor>(shared_from_this()), &Monitor::heard,
                kAppRealTimeDataNotification, agent());
        return nullptr;
    }
    std::shared_ptr<Object> stop() override {
        note("stop");
        if (throwsOnStop) throw std::runtime_error("stuck");
        if (auto obstacle = QRVPlugIn::stop()) return obstacle;
        if (on)
            agent()->world().notificationCenter().removeObserver(*this, kAppRealTimeDataNotification,
                                                                 agent());
        return nullptr;
    }
    void willUnload() override { note("willUnload"); }
    void heard(const Notification&) {
        ++fires;
        if (throws) throw std::out_of_range("row 3");
    }
    void note(const std::string& call) {
        calls.push_back(call + (on ? " on" : " off") + (World::current() ? "" : " without a world"));
    }

    bool on = true, hasSwitch = true, takesSwitch = true, throws = false, throwsOnStop = false;
    int fires = 0;
    std::vector<std::string> calls;
};

class HostedPlugInTest : public testing::Test {
  protected:
    std::shared_ptr<Monitor> monitor(const std::string& title) {
        auto made = makePlugIn<Monitor>(station, nullptr);
        made->setTitle(title);
        return made;
    }
    std::vector<DeliveryFailure> announce() {
        return station->announce(Readings::make({AgentProperty::number("a", 1, std::nullopt)}));
    }

    FakeWorld world;
    RecordedScripts scripts{world};
    std::shared_ptr<Station> station = std::make_shared<Station>(world, "roof", scripts);
    std::shared_ptr<Monitor> plugIn = monitor("Storm");
    HostedPlugIn hosted{world, plugIn};
};

TEST_F(HostedPlugInTest, CallsOpenTheWorldAndNothingStandsOpenAfterwards) {
    EXPECT_EQ(hosted.start(), nullptr);
    EXPECT_EQ(hosted.stop(), nullptr);
    EXPECT_THAT(plugIn->calls, ElementsAre("start on", "stop on"));
    EXPECT_EQ(hosted.call([](QRVPlugIn& called) { return called.title(); }), "Storm");
    EXPECT_EQ(World::current(), nullptr);
}

TEST_F(HostedPlugInTest, AnObstacleIsPassedOnAndLeavesThePlugInAsItWas) {
    world.plugInHost().onStart = std::make_shared<FakeObstacle>();
    EXPECT_EQ(hosted.start(), world.plugInHost().onStart);
    EXPECT_FALSE(hosted.isStarted());
}

TEST_F(HostedPlugInTest, TheSwitchStopsWithTheOldValueAndStartsWithTheNew) {
    hosted.start();
    plugIn->calls.clear();
    EXPECT_EQ(hosted.setEvaluating(false).value(), nullptr);
    EXPECT_THAT(plugIn->calls, ElementsAre("stop on", "set", "start off"));
    EXPECT_EQ(hosted.evaluating(), false);
    announce();
    EXPECT_EQ(plugIn->fires, 0);
    EXPECT_EQ(hosted.setEvaluating(true).value(), nullptr);
    announce();
    EXPECT_EQ(plugIn->fires, 1);
}

TEST_F(HostedPlugInTest, ASwitchThatStandsThereAlreadyIsNotTurned) {
    hosted.start();
    plugIn->calls.clear();
    EXPECT_TRUE(hosted.setEvaluating(true));
    EXPECT_TRUE(plugIn->calls.empty());
}

TEST_F(HostedPlugInTest, APlugInThatDoesNotRunIsNotStartedByItsSwitch) {
    EXPECT_TRUE(hosted.setEvaluating(false));
    EXPECT_THAT(plugIn->calls, ElementsAre("set"));
    EXPECT_FALSE(hosted.isStarted());
}

TEST_F(HostedPlugInTest, AnObstacleOfStoppingKeepsTheSwitch) {
    hosted.start();
    world.plugInHost().onStop = std::make_shared<FakeObstacle>();
    EXPECT_EQ(hosted.setEvaluating(false).value(), world.plugInHost().onStop);
    EXPECT_EQ(hosted.evaluating(), true);
    EXPECT_TRUE(hosted.isStarted());
}

TEST_F(HostedPlugInTest, APlugInWithoutASwitchIsAnError) {
    plugIn->hasSwitch = false;
    EXPECT_EQ(hosted.evaluating(), std::nullopt);
    EXPECT_FALSE(hosted.setEvaluating(true));
}

TEST_F(HostedPlugInTest, ASwitchThatCannotBeTurnedIsAnErrorAndThePlugInRunsOn) {
    plugIn->takesSwitch = false;
    hosted.start();
    EXPECT_FALSE(hosted.setEvaluating(false));
    EXPECT_TRUE(hosted.isStarted());
    announce();
    EXPECT_EQ(plugIn->fires, 1);
}

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
              "\"Storm\" failed and is stopped: row 3 (stopping it failed too: stuck)");
    plugIn->throwsOnStop = false;
}

TEST_F(HostedPlugInsTest, AnObserverThatIsNoPlugInIsALineInTheLog) {
    all.settle({{std::make_shared<FakeObstacle>(), std::make_exception_ptr(std::runtime_error("odd"))}});
    ASSERT_EQ(world.log().lines().size(), 1U);
    EXPECT_THAT(world.log().lines()[0].message, testing::EndsWith("failed: odd"));
}

TEST_F(HostedPlugInsTest, RemovingStopsAndUnloadsAndDropsThePlugIn) {
    all.add(plugIn).start();
    plugIn->calls.clear();
    EXPECT_EQ(all.remove(*plugIn), nullptr);
    EXPECT_THAT(plugIn->calls, ElementsAre("stop on", "willUnload on"));
    EXPECT_EQ(all.find(*plugIn), nullptr);
    EXPECT_EQ(all.remove(*plugIn), nullptr);
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
    const auto plugIn = makePlugIn<Monitor>(station, nullptr);
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
