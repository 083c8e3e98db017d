#include <functional>
#include <thread>

#include <gmock/gmock.h>

#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

// Which step of a cycle runs on which thread, where the poster's is not the main thread.

namespace vigil {
namespace {

class NotingAction : public Criterion {
  public:
    void performActionWithDisplayValues(const DisplayValueList&) override {
        ranOn = std::this_thread::get_id();
    }
    std::thread::id ranOn;
};

class CycleThreads : public testing::Test {
  protected:
    CycleThreads() {
        m_monitor->setRuleEditorStoredCriteria(
            std::make_shared<QRVVigilPlugIn::CriteriaRows>(QRVVigilPlugIn::CriteriaRows{{m_action}}));
        m_monitor->setRuleEditorStoredDisplayValues(
            std::make_shared<QRVVigilPlugIn::DisplayValueRows>(QRVVigilPlugIn::DisplayValueRows{{"row"}}));
        m_monitor->setEvaluating(true);
        m_monitor->start();
        m_token = m_monitor->propertyNamed("actionStatus")->observe(*m_monitor, [this] {
            m_statusSetOn.push_back(std::this_thread::get_id());
        });
    }
    void announce(double windChill) {
        EXPECT_TRUE(
            FakeAgent::announce(m_agent, {AgentProperty::number("windChill", windChill, m_world.now())})
                .empty());
    }

    FakeWorld m_world{FakeMainQueue::Form::Threaded};
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
    std::shared_ptr<QRVVigilPlugIn> m_monitor = makePlugIn<QRVVigilPlugIn>(m_agent, nullptr);
    std::shared_ptr<NotingAction> m_action = std::make_shared<NotingAction>();
    std::vector<std::thread::id> m_statusSetOn;
    std::shared_ptr<const void> m_token;
};

TEST_F(CycleThreads, AMissAsksNothingOfTheMainThread) {
    announce(20);
    EXPECT_EQ(m_world.mainQueue().handOvers(), 0);
    EXPECT_EQ(m_world.mainQueue().postedTasks(), 0);
    EXPECT_EQ(m_action->ranOn, std::thread::id());
    const auto poster = std::this_thread::get_id();
    EXPECT_THAT(m_statusSetOn, testing::ElementsAre(poster, poster));
}

TEST_F(CycleThreads, AFireHandsOverItsActionsAloneAndWritesItsStatusOnThePostersThread) {
    announce(5);
    EXPECT_EQ(m_world.mainQueue().handOvers(), 1);
    EXPECT_NE(m_action->ranOn, std::this_thread::get_id());
    EXPECT_NE(m_action->ranOn, std::thread::id());
    EXPECT_THAT(m_statusSetOn, testing::ElementsAre(std::this_thread::get_id()));
}

TEST_F(CycleThreads, AWaitAsksNothingOfTheMainThread) {
    m_monitor->setRetriggerDate(m_world.now().plus(1));
    announce(5);
    EXPECT_EQ(m_world.mainQueue().handOvers(), 0);
    EXPECT_TRUE(m_statusSetOn.empty());
}

}  // namespace
}  // namespace vigil
