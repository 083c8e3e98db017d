#include <stdexcept>
#include <thread>

#include <gmock/gmock.h>

#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Actions.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

// What scenarios cannot say: threads, order of rows, failures, the log line to the character.

namespace vigil {
namespace {

using testing::ElementsAre;

class RecordingAction : public Criterion {
  public:
    explicit RecordingAction(std::function<void(const DisplayValueList&)> act) : m_act(std::move(act)) {}
    void performActionWithDisplayValues(const DisplayValueList& values) override { m_act(values); }

  private:
    std::function<void(const DisplayValueList&)> m_act;
};

class Cycle : public testing::Test {
  protected:
    explicit Cycle(FakeMainQueue::Form form = FakeMainQueue::Form::Inline)
        : m_world(form),
          m_agent(std::make_shared<FakeAgent>(m_world)),
          m_monitor(makePlugIn<QRVVigilPlugIn>(m_agent, nullptr)) {
        m_monitor->setEvaluating(true);
        m_monitor->start();
    }

    void addRow(std::function<void(const DisplayValueList&)> act, DisplayValueList values = {"row"}) {
        if (!m_monitor->ruleEditorStoredCriteria()) {
            m_monitor->setRuleEditorStoredCriteria(std::make_shared<QRVVigilPlugIn::CriteriaRows>());
            m_monitor->setRuleEditorStoredDisplayValues(std::make_shared<QRVVigilPlugIn::DisplayValueRows>());
        }
        m_monitor->ruleEditorStoredCriteria()->push_back({std::make_shared<RecordingAction>(std::move(act))});
        m_monitor->ruleEditorStoredDisplayValues()->push_back(std::move(values));
    }

    std::vector<DeliveryFailure> announceCold() {
        return FakeAgent::announce(m_agent, {AgentProperty::number("windChill", 5, m_world.now())});
    }

    FakeWorld m_world;
    std::shared_ptr<FakeAgent> m_agent;
    std::shared_ptr<QRVVigilPlugIn> m_monitor;
};

class CycleFromAnotherThread : public Cycle {
  protected:
    CycleFromAnotherThread() : Cycle(FakeMainQueue::Form::Threaded) {}
};

TEST_F(Cycle, TheLogLineIsExact) {
    FakeAgent::announce(m_agent, {AgentProperty::number("windChill", 25.5, m_world.now()),
                                  AgentProperty::text("sky", "Rain", m_world.now())});
    ASSERT_EQ(m_world.log().lines().size(), 1u);
    EXPECT_EQ(m_world.log().lines()[0].level, 3);
    EXPECT_EQ(m_world.log().lines()[0].message,
              "Vigil evaluation dictionary: {windChill = 25.5, sky = Rain} #QRVVigilPlugIn");
}

TEST_F(Cycle, AWaitWritesNoLogLine) {
    m_monitor->setRetriggerDate(m_world.now().plus(1));
    announceCold();
    EXPECT_TRUE(m_world.log().lines().empty());
    EXPECT_FALSE(m_monitor->lastEvaluationDictionary());
}

TEST_F(Cycle, AnAbsentDateIsNoWait) {
    m_monitor->setRetriggerDate(std::nullopt);
    m_monitor->setRetriggerInterval(std::nullopt);
    announceCold();
    EXPECT_EQ(m_monitor->retriggerDate(), m_world.now()) << "an absent interval reads as 0";
}

TEST_F(Cycle, ANotificationWithoutDataIsJudgedEmptyAndEmptiesTheSnapshot) {
    announceCold();
    m_world.advance(61);
    m_world.notificationCenter().post({"kAppRealTimeDataNotification", m_agent, {}});
    EXPECT_THAT(m_monitor->actionStatus(),
                testing::StartsWith("The conditions have NOT triggered an alert yet."));
    ASSERT_TRUE(m_monitor->lastEvaluationDictionary());
    EXPECT_EQ(m_monitor->lastEvaluationDictionary()->size(), 0u);
}

TEST_F(Cycle, DataOfAnotherKindIsNoneAndOtherKeysAreNotLookedAt) {
    const auto batch = Readings::make({AgentProperty::number("windChill", 5, m_world.now())});
    for (const std::shared_ptr<Object>& odd : {std::shared_ptr<Object>(m_agent), std::shared_ptr<Object>()}) {
        m_world.notificationCenter().post({"kAppRealTimeDataNotification", m_agent, {{"data", odd}}});
        EXPECT_EQ(m_world.log().lines().back().message, "Vigil evaluation dictionary: {} #QRVVigilPlugIn");
        EXPECT_EQ(m_monitor->lastEvaluationDictionary()->size(), 0u);
    }
    m_world.notificationCenter().post(
        {"kAppRealTimeDataNotification", m_agent, {{"more", m_agent}, {"data", batch}}});
    EXPECT_EQ(m_monitor->retriggerDate(), m_world.now().plus(60));
}

TEST_F(Cycle, RowsRunInOrderEachOnceAlsoEqualOnesAndOnlyTheirHeads) {
    std::vector<int> ran;
    for (const int row : {0, 1, 1})
        addRow([&ran, row](const DisplayValueList&) { ran.push_back(row); });
    (*m_monitor->ruleEditorStoredCriteria())[0].push_back(std::make_shared<RecordingAction>(
        [](const DisplayValueList&) { FAIL() << "only the head of a row acts"; }));
    announceCold();
    EXPECT_THAT(ran, ElementsAre(0, 1, 1));
}

TEST_F(Cycle, ARowHandsItsActionAllItsDisplayValuesWithTheLiveControls) {
    const auto field = std::make_shared<TextField>("before");
    DisplayValueList seen;
    std::optional<std::string> typed;
    addRow(
        [&](const DisplayValueList& values) {
            seen = values;
            typed = stringValue(values.at(1));
        },
        {"Speak Text", field});
    field->setStringValue("typed later");
    announceCold();
    EXPECT_EQ(seen, (DisplayValueList{"Speak Text", field}));
    EXPECT_EQ(typed, "typed later");
}

TEST_F(Cycle, IdenticalRowsRunEachAlsoWhereTheyShareActionAndControls) {
    m_world.files().setFile("/scripts/s", "echo");
    const auto shared = RunScriptCriterion::criterionWithAgent(m_agent);
    const auto equal = RunScriptCriterion::criterionWithAgent(m_agent);
    const DisplayValueList values = {"Run script", std::make_shared<TextField>("s")};
    m_monitor->setRuleEditorStoredCriteria(std::make_shared<QRVVigilPlugIn::CriteriaRows>(
        QRVVigilPlugIn::CriteriaRows{{shared}, {shared}, {equal}}));
    m_monitor->setRuleEditorStoredDisplayValues(std::make_shared<QRVVigilPlugIn::DisplayValueRows>(
        QRVVigilPlugIn::DisplayValueRows{values, values, values}));
    m_monitor->performActions();
    EXPECT_EQ(m_agent->scripts.size(), 3u);
}

TEST_F(Cycle, AMonitorWithoutRowsFiresAndRunsNothing) {
    EXPECT_TRUE(announceCold().empty());
    EXPECT_TRUE(m_world.effects().empty());
    EXPECT_TRUE(m_agent->scripts.empty());
    EXPECT_EQ(m_monitor->retriggerDate(), m_world.now().plus(60));
}

TEST_F(Cycle, ADamagedRowThrowsOutAndTheRowsBehindItDoNotRun) {
    addRow([](const DisplayValueList&) {});
    m_monitor->ruleEditorStoredCriteria()->push_back({});
    m_monitor->ruleEditorStoredDisplayValues()->push_back({});
    bool ran = false;
    addRow([&](const DisplayValueList&) { ran = true; });
    const auto failures = announceCold();
    ASSERT_EQ(failures.size(), 1u);
    EXPECT_THROW(std::rethrow_exception(failures[0].what), std::out_of_range);
    EXPECT_FALSE(ran);
    EXPECT_EQ(m_monitor->retriggerDate(), Date::distantPast()) << "the cycle was abandoned";
    m_monitor->ruleEditorStoredDisplayValues()->clear();
    EXPECT_THROW(m_monitor->performActions(), std::out_of_range) << "fewer display values than rows";
}

TEST_F(Cycle, ARowWhoseHeadIsNoActionDoesNothing) {
    m_monitor->setRuleEditorStoredCriteria(std::make_shared<QRVVigilPlugIn::CriteriaRows>(
        QRVVigilPlugIn::CriteriaRows{{Criterion::criterionWithAgent(m_agent, "plain")}}));
    m_monitor->setRuleEditorStoredDisplayValues(
        std::make_shared<QRVVigilPlugIn::DisplayValueRows>(QRVVigilPlugIn::DisplayValueRows{{"plain"}}));
    EXPECT_TRUE(announceCold().empty());
}

TEST_F(Cycle, TheWaitBeginsWhenTheActionsHaveEnded) {
    addRow([&](const DisplayValueList&) { m_world.advance(30); });
    const Date posted = m_world.now();
    announceCold();
    EXPECT_EQ(m_monitor->retriggerDate(), posted.plus(90));
}

TEST_F(Cycle, ACycleInsideAnActionOfTheSameMonitorIsACycleOfItsOwn) {
    int depth = 0;
    addRow([&](const DisplayValueList&) {
        if (++depth == 1) announceCold();
    });
    announceCold();
    EXPECT_EQ(depth, 2);
}

TEST_F(Cycle, ObserversOfTheStatusHearOfEachChange) {
    std::vector<std::string> texts;
    const auto token = m_monitor->propertyNamed("actionStatus")->observe(*m_monitor, [&] {
        texts.push_back(m_monitor->actionStatus());
    });
    FakeAgent::announce(m_agent, {});
    EXPECT_THAT(
        texts,
        ElementsAre(
            "The conditions have NOT triggered an alert yet.",
            "The conditions have NOT triggered an alert yet.Next trigger at 0001-01-01 00:00:00 +0000"));
}

TEST_F(Cycle, TheSnapshotIsIndependentOfWhatTheAgentPublishesLater) {
    announceCold();
    m_agent->setProperties({AgentProperty::number("windChill", 99, m_world.now())});
    EXPECT_EQ(m_monitor->lastEvaluationDictionary()->objectForKey("windChill")->value(), 5);
}

TEST_F(Cycle, AnIntervalTooLargeForSinglePrecisionWaitsForEver) {
    m_monitor->setRetriggerInterval(Number(1e300));
    announceCold();
    EXPECT_EQ(m_monitor->getRunTime(), "Next trigger at inf seconds since 2001-01-01 00:00:00 +0000");
    m_world.advance(1e12);
    const auto before = m_monitor->actionStatus();
    announceCold();
    EXPECT_EQ(m_monitor->actionStatus(), before);
}

TEST_F(CycleFromAnotherThread, ActionsRunOnTheMainThreadAndThePosterWaitsForThem) {
    std::atomic<bool> done = false;
    std::thread::id ranOn;
    addRow([&](const DisplayValueList&) {
        ranOn = std::this_thread::get_id();
        EXPECT_TRUE(m_world.mainQueue().isMainThread());
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        done = true;
    });
    announceCold();
    EXPECT_TRUE(done) << "dataChanged returns only after the actions";
    EXPECT_NE(ranOn, std::this_thread::get_id());
    EXPECT_EQ(m_world.mainQueue().handOvers(), 1);
}

TEST_F(CycleFromAnotherThread, WhatAnActionThrowsReachesThePoster) {
    addRow([](const DisplayValueList&) { throw std::runtime_error("broken"); });
    const auto failures = announceCold();
    ASSERT_EQ(failures.size(), 1u);
    EXPECT_THROW(std::rethrow_exception(failures[0].what), std::runtime_error);
}

}  // namespace
}  // namespace vigil
