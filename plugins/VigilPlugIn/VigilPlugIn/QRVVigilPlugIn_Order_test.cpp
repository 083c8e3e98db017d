#include <stdexcept>
#include <thread>

#include <gmock/gmock.h>

#include "host_contract/QRVKit.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Actions.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

// What of a monitor has changed at which moment of a cycle, and what rows see that are changed while they
// run.

namespace vigil {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CallingAction : public Criterion {
  public:
    explicit CallingAction(std::function<void()> act) : m_act(std::move(act)) {}
    void performActionWithDisplayValues(const DisplayValueList&) override { m_act(); }

  private:
    std::function<void()> m_act;
};

class CycleOrder : public testing::Test {
  protected:
    explicit CycleOrder(FakeMainQueue::Form form = FakeMainQueue::Form::Inline)
        : m_world(form),
          m_agent(std::make_shared<FakeAgent>(m_world)),
          m_monitor(makePlugIn<QRVVigilPlugIn>(m_agent, nullptr)) {
        m_monitor->setEvaluating(true);
        m_monitor->setRuleEditorStoredCriteria(std::make_shared<QRVVigilPlugIn::CriteriaRows>());
        m_monitor->setRuleEditorStoredDisplayValues(std::make_shared<QRVVigilPlugIn::DisplayValueRows>());
        m_monitor->start();
    }

    void addRow(std::function<void()> act) {
        m_monitor->ruleEditorStoredCriteria()->push_back({std::make_shared<CallingAction>(std::move(act))});
        m_monitor->ruleEditorStoredDisplayValues()->push_back({"row"});
    }

    std::vector<DeliveryFailure> announce(double windChill) {
        return FakeAgent::announce(m_agent, {AgentProperty::number("windChill", windChill, m_world.now())});
    }

    FakeWorld m_world;
    std::shared_ptr<FakeAgent> m_agent;
    std::shared_ptr<QRVVigilPlugIn> m_monitor;
};

TEST_F(CycleOrder, WhileActionsRunOnlyTheLogLineHasBeenWritten) {
    announce(20);
    const auto statusBefore = m_monitor->actionStatus();
    bool acted = false;
    addRow([&] {
        acted = true;
        EXPECT_EQ(m_world.log().lines().size(), 2u);
        EXPECT_EQ(m_monitor->retriggerDate(), Date::distantPast());
        EXPECT_EQ(m_monitor->actionStatus(), statusBefore);
        EXPECT_EQ(m_monitor->lastEvaluationDictionary()->objectForKey("windChill")->value(), 20);
    });
    announce(5);
    ASSERT_TRUE(acted);
    EXPECT_EQ(m_monitor->retriggerDate(), m_world.now().plus(60));
    EXPECT_EQ(m_monitor->actionStatus(), statusBefore + m_monitor->getRunTime());
    EXPECT_EQ(m_monitor->lastEvaluationDictionary()->objectForKey("windChill")->value(), 5);
}

TEST_F(CycleOrder, TheStatusHasItsTailBeforeTheSnapshotIsTaken) {
    std::vector<bool> snapshotThere;
    const auto token = m_monitor->propertyNamed("actionStatus")->observe(*m_monitor, [&] {
        snapshotThere.push_back(m_monitor->lastEvaluationDictionary().has_value());
    });
    announce(20);
    EXPECT_THAT(snapshotThere, ElementsAre(false, false));
    EXPECT_TRUE(m_monitor->lastEvaluationDictionary());
}

TEST_F(CycleOrder, WhatAnActionSetsAsIntervalCountsForThisFire) {
    addRow([&] { m_monitor->setRetriggerInterval(Number(10)); });
    announce(5);
    EXPECT_EQ(m_monitor->retriggerDate(), m_world.now().plus(600));
}

TEST_F(CycleOrder, TheTailFollowsWhateverStatusStandsThereAfterTheActions) {
    addRow([&] { m_monitor->setActionStatus("An action wrote this. "); });
    announce(5);
    EXPECT_EQ(m_monitor->actionStatus(), "An action wrote this. " + m_monitor->getRunTime());
}

TEST_F(CycleOrder, AWaitOfOneSecondMoreChangesNothingAtAll) {
    announce(5);
    const auto status = m_monitor->actionStatus();
    const auto date = m_monitor->retriggerDate();
    bool acted = false;
    addRow([&] { acted = true; });
    m_world.setNow(date->plus(-1));
    announce(4);
    EXPECT_FALSE(acted);
    EXPECT_EQ(m_world.log().lines().size(), 1u);
    EXPECT_EQ(m_monitor->actionStatus(), status);
    EXPECT_EQ(m_monitor->retriggerDate(), date);
    EXPECT_EQ(m_monitor->lastEvaluationDictionary()->objectForKey("windChill")->value(), 5);
}

TEST_F(CycleOrder, ADateThatEqualsNowIsNoWait) {
    m_monitor->setRetriggerDate(m_world.now());
    bool acted = false;
    addRow([&] { acted = true; });
    announce(5);
    EXPECT_TRUE(acted);
}

TEST_F(CycleOrder, TheConditionThatStandsThereAtTheVerdictDecides) {
    m_monitor->setPredicate(ConditionPredicate::predicateWithFormat("windChill.unitValue > 100").value());
    announce(5);
    EXPECT_EQ(m_monitor->retriggerDate(), Date::distantPast());
    m_monitor->setPredicate(nullptr);
    announce(5);
    EXPECT_EQ(m_monitor->retriggerDate(), Date::distantPast()) << "no condition never holds";
    EXPECT_EQ(m_world.log().lines().size(), 2u) << "but its readings are judged and logged all the same";
}

TEST_F(CycleOrder, WithOnlyOnChangeAFirstReadingCountsIfItIsNotZeroAndHasATime) {
    m_monitor->setTriggerOnlyOnChange(true);
    FakeAgent::announce(m_agent, {AgentProperty::number("zero", 0, m_world.now()),
                                  AgentProperty::number("minusZero", -0.0, m_world.now()),
                                  AgentProperty::number("timeless", 7, std::nullopt),
                                  AgentProperty::number("counts", 7, m_world.now())});
    EXPECT_EQ(m_world.log().lines().back().message,
              "Vigil evaluation dictionary: {counts = 7} #QRVVigilPlugIn");
}

TEST_F(CycleOrder, TheSnapshotIsAskedByKeyAlsoWhereTheReadingsComeInAnotherOrder) {
    m_monitor->setTriggerOnlyOnChange(true);
    FakeAgent::announce(m_agent, {AgentProperty::number("a", 5, m_world.now()),
                                  AgentProperty::number("b", 7, m_world.now())});
    m_world.advance(1);
    FakeAgent::announce(m_agent, {AgentProperty::number("b", 7, m_world.now()),
                                  AgentProperty::number("a", 5, m_world.now())});
    EXPECT_EQ(m_world.log().lines().back().message, "Vigil evaluation dictionary: {} #QRVVigilPlugIn");
}

TEST_F(CycleOrder, TheSnapshotHoldsExactlyTheReadingsAlsoThoseThatWereNotJudged) {
    m_monitor->setTriggerOnlyOnChange(true);
    FakeAgent::announce(m_agent, {AgentProperty::number("gone", 1, m_world.now())});
    FakeAgent::announce(m_agent, {AgentProperty::number("windChill", 0, m_world.now()),
                                  AgentProperty::text("sky", "Rain", m_world.now())});
    EXPECT_EQ(m_world.log().lines().back().message, "Vigil evaluation dictionary: {} #QRVVigilPlugIn");
    EXPECT_THAT(m_monitor->lastEvaluationDictionary()->keys(), ElementsAre("windChill", "sky"));
    FakeAgent::announce(m_agent, {});
    EXPECT_THAT(m_monitor->lastEvaluationDictionary()->keys(), IsEmpty());
}

TEST_F(CycleOrder, ARowAddedByAnActionRunsInTheSamePass) {
    std::vector<int> ran;
    addRow([&] {
        ran.push_back(0);
        addRow([&] { ran.push_back(2); });
    });
    addRow([&] { ran.push_back(1); });
    announce(5);
    EXPECT_THAT(ran, ElementsAre(0, 1, 2));
}

TEST_F(CycleOrder, RowsThatAnActionTakesAwayOrReplacesAreReadAnew) {
    std::vector<int> ran;
    addRow([&] {
        ran.push_back(0);
        m_monitor->setRuleEditorStoredCriteria(std::make_shared<QRVVigilPlugIn::CriteriaRows>());
        m_monitor->setRuleEditorStoredDisplayValues(std::make_shared<QRVVigilPlugIn::DisplayValueRows>());
        addRow([&] { ran.push_back(10); });
        addRow([&] { ran.push_back(11); });
    });
    addRow([&] { ran.push_back(1); });
    addRow([&] { ran.push_back(2); });
    announce(5);
    EXPECT_THAT(ran, ElementsAre(0, 11)) << "the row that acts lives on although its list has gone";
}

TEST_F(CycleOrder, WithoutAnyDisplayValuesActionsFindNothingToActOn) {
    m_world.files().setFile("/scripts/", "never read");
    m_monitor->setRuleEditorStoredCriteria(std::make_shared<QRVVigilPlugIn::CriteriaRows>(
        QRVVigilPlugIn::CriteriaRows{{RunScriptCriterion::criterionWithAgent(m_agent)}}));
    m_monitor->setRuleEditorStoredDisplayValues(nullptr);
    EXPECT_TRUE(announce(5).empty()) << "an absent list is asked, not one that is too short";
    EXPECT_THAT(m_agent->scripts, IsEmpty());
    EXPECT_EQ(m_monitor->retriggerDate(), m_world.now().plus(60));
}

TEST_F(CycleOrder, EmptyRowsRunNothing) {
    EXPECT_TRUE(announce(5).empty());
    EXPECT_EQ(m_monitor->retriggerDate(), m_world.now().plus(60));
}

class CycleOrderFromAnotherThread : public CycleOrder {
  protected:
    CycleOrderFromAnotherThread() : CycleOrder(FakeMainQueue::Form::Threaded) {}
};

TEST_F(CycleOrderFromAnotherThread, TheHandOverHoldsTheMonitor) {
    const std::weak_ptr<QRVVigilPlugIn> held = m_monitor;
    bool lived = false;
    addRow([&] {
        m_monitor.reset();
        lived = !held.expired();
    });
    announce(5);
    EXPECT_TRUE(lived);
}

TEST_F(CycleOrderFromAnotherThread, ARowBeginsWhenTheOneBeforeHasReturned) {
    int running = 0;
    std::vector<int> atBegin;
    for (int row = 0; row < 3; ++row)
        addRow([&] {
            atBegin.push_back(running++);
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            --running;
        });
    announce(5);
    EXPECT_THAT(atBegin, ElementsAre(0, 0, 0));
}

}  // namespace
}  // namespace vigil
