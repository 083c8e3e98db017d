#include <gmock/gmock.h>

#include "host_contract/QRVKit.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

// What each call of the host does to a monitor's observation, and what it leaves alone.

namespace vigil {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

/// Notes how many observe at the moment at which the base is asked.
class CountingHost : public FakePlugInHost {
  public:
    std::shared_ptr<Object> startResult(const Object& plugIn) override {
        observersWhenAsked.push_back(count());
        return FakePlugInHost::startResult(plugIn);
    }
    std::shared_ptr<Object> stopResult(const Object& plugIn) override {
        observersWhenAsked.push_back(count());
        return FakePlugInHost::stopResult(plugIn);
    }
    std::function<std::size_t()> count;
    std::vector<std::size_t> observersWhenAsked;
};

class CountingWorld : public FakeWorld {
  public:
    FakePlugInHost& plugInHost() override { return host; }
    CountingHost host;
};

class MonitorLife : public testing::Test {
  protected:
    MonitorLife() {
        m_world.host.count = [this] { return observers(); };
    }
    std::size_t observers() {
        return m_world.notificationCenter().observerCount(kAppRealTimeDataNotification, m_agent);
    }
    void announceCold(const std::shared_ptr<FakeAgent>& agent) {
        EXPECT_TRUE(
            FakeAgent::announce(agent, {AgentProperty::number("windChill", 5, m_world.now())}).empty());
    }

    CountingWorld m_world;
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
    std::shared_ptr<QRVVigilPlugIn> m_monitor = makePlugIn<QRVVigilPlugIn>(m_agent, nullptr);
};

TEST_F(MonitorLife, TheBaseIsAskedBeforeObservationChangesAlsoWhereTheMonitorIsNotActive) {
    m_monitor->setEvaluating(true);
    m_monitor->start();
    m_monitor->stop();
    EXPECT_THAT(m_world.host.observersWhenAsked, ElementsAre(0u, 1u)) << "not yet at start, still at stop";
    m_monitor->setEvaluating(false);
    m_monitor->start();
    m_monitor->stop();
    EXPECT_THAT(m_world.host.observersWhenAsked, SizeIs(4));
}

TEST_F(MonitorLife, SwitchedOnWhileRunningItObservesFromTheNextStart) {
    m_monitor->start();
    m_monitor->setEvaluating(true);
    announceCold(m_agent);
    EXPECT_TRUE(m_world.log().lines().empty());
    m_monitor->start();
    EXPECT_EQ(observers(), 1u);
    announceCold(m_agent);
    EXPECT_EQ(m_world.log().lines().size(), 1u);
}

TEST_F(MonitorLife, SwitchedOffWhileRunningItGoesOnJudging) {
    m_monitor->setEvaluating(true);
    m_monitor->start();
    m_monitor->setEvaluating(false);
    announceCold(m_agent);
    EXPECT_EQ(m_monitor->retriggerDate(), m_world.now().plus(60));
    EXPECT_FALSE(m_monitor->evaluating()) << "a cycle does not turn the switch";
}

TEST_F(MonitorLife, OnlyItsOwnStationIsHeardAndStoppingEndsItsOwnObservationAlone) {
    const auto other = std::make_shared<FakeAgent>(m_world);
    const auto second = makePlugIn<QRVVigilPlugIn>(m_agent, nullptr);
    for (const auto& monitor : {m_monitor, second}) {
        monitor->setEvaluating(true);
        monitor->start();
    }
    announceCold(other);
    EXPECT_EQ(m_monitor->retriggerDate(), Date::distantPast());
    m_monitor->stop();
    announceCold(m_agent);
    EXPECT_EQ(m_monitor->retriggerDate(), Date::distantPast());
    EXPECT_EQ(second->retriggerDate(), m_world.now().plus(60));
}

TEST_F(MonitorLife, LoadingShowingHidingAndUnloadingChangeNothing) {
    m_monitor->setEvaluating(true);
    m_monitor->start();
    announceCold(m_agent);
    const auto status = m_monitor->actionStatus();
    const auto roots = m_monitor->criteria();
    const auto asked = m_world.host.asked;
    const int clockReads = m_world.clockReads();
    m_monitor->didLoad();
    m_monitor->didLoad(m_agent);
    m_monitor->viewWillAppear();
    m_monitor->viewWillDisappear();
    m_monitor->willUnload();
    EXPECT_EQ(observers(), 1u) << "unloading alone does not stop it";
    EXPECT_TRUE(m_monitor->evaluating());
    EXPECT_EQ(m_monitor->actionStatus(), status);
    EXPECT_EQ(m_monitor->criteria(), roots);
    EXPECT_EQ(m_world.host.asked, asked);
    EXPECT_EQ(m_world.clockReads(), clockReads);
    EXPECT_EQ(m_world.log().lines().size(), 1u) << "the cycle's";
}

TEST_F(MonitorLife, EveryPropertyGivesBackWhatWasSetAndNothingElseChanges) {
    m_monitor->setCurrentDate("today");
    m_monitor->setDateLastDbPull("10:00.00");
    m_monitor->setCurrentPropertyStringValue("5 °C");
    m_monitor->setStartTime(Date(1));
    m_monitor->setRetriggerDate(Date(2));
    const auto player = m_world.sound().makePlayer("/resources/bell.wav");
    m_monitor->setAudioPlayer(player);
    EXPECT_EQ(m_monitor->currentDate(), "today");
    EXPECT_EQ(m_monitor->dateLastDbPull(), "10:00.00");
    EXPECT_EQ(m_monitor->currentPropertyStringValue(), "5 °C");
    EXPECT_EQ(m_monitor->startTime(), Date(1));
    EXPECT_EQ(m_monitor->retriggerDate(), Date(2));
    EXPECT_EQ(m_monitor->audioPlayer(), player);
    EXPECT_EQ(m_monitor->actionStatus(), "Check Activate to start.");
    EXPECT_FALSE(m_monitor->evaluating());
}

}  // namespace
}  // namespace vigil
