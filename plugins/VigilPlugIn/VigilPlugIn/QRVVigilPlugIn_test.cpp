#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"

#include <limits>

#include <gmock/gmock.h>

#include "host_contract/QRVKit.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

class Monitor : public testing::Test {
  protected:
    std::size_t observers() const {
        return m_world.notificationCenter().observerCount(kAppRealTimeDataNotification, m_agent);
    }

    mutable FakeWorld m_world;
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
    std::shared_ptr<QRVVigilPlugIn> m_monitor = makePlugIn<QRVVigilPlugIn>(m_agent, nullptr);
};

TEST_F(Monitor, ANewOneHasItsDefaults) {
    EXPECT_FALSE(m_monitor->evaluating());
    EXPECT_FALSE(m_monitor->triggerOnlyOnChange());
    EXPECT_EQ(m_monitor->retriggerInterval(), Number(1));
    EXPECT_EQ(m_monitor->retriggerDate(), Date::distantPast());
    EXPECT_EQ(m_monitor->actionStatus(), "Check Activate to start.");
    EXPECT_EQ(m_monitor->currentPropertyStringValue(), "");
    EXPECT_EQ(m_monitor->predicate()->printed(), "windChill.unitValue < 10 OR windSpeed.unitValue > 25");
    EXPECT_EQ(m_monitor->startTime(), m_world.now());
    EXPECT_FALSE(m_monitor->lastEvaluationDictionary());
    EXPECT_FALSE(m_monitor->currentDate());
    EXPECT_FALSE(m_monitor->dateLastDbPull());
    EXPECT_EQ(m_monitor->propertyArray(), nullptr);
    EXPECT_EQ(m_monitor->ruleEditorStoredCriteria(), nullptr);
    EXPECT_EQ(m_monitor->ruleEditorStoredDisplayValues(), nullptr);
    EXPECT_EQ(m_monitor->audioPlayer(), nullptr);
}

TEST_F(Monitor, TheRootListIsOneListForAllWhoAskAlsoFromSeveralThreads) {
    EXPECT_EQ(std::make_shared<QRVVigilPlugIn>()->criteria(), nullptr) << "before it is initialised";
    std::shared_ptr<CriterionList> other;
    std::thread asking([&] { other = m_monitor->criteria(); });
    const auto roots = m_monitor->criteria();
    asking.join();
    ASSERT_NE(roots, nullptr);
    EXPECT_EQ(roots, other);
    EXPECT_EQ(roots->front()->agent(), m_agent);
    roots->clear();
    EXPECT_EQ(m_monitor->criteria()->size(), 0u);
}

TEST_F(Monitor, ARootListThatWasSetBeforeAnybodyAskedStays) {
    m_monitor->setCriteria(nullptr);
    EXPECT_EQ(m_monitor->criteria(), nullptr);
    const auto own = std::make_shared<CriterionList>();
    m_monitor->setCriteria(own);
    EXPECT_EQ(m_monitor->criteria(), own);
}

TEST_F(Monitor, TheRootListHasSixEntriesInItsOrderWithSeparatorsThirdAndSixth) {
    std::vector<std::string> roots;
    for (const auto& root : *m_monitor->criteria())
        roots.push_back(root->className());
    EXPECT_THAT(roots, testing::ElementsAre("RunScriptCriterion", "PlaySoundCriterion", "SeparatorCriterion",
                                            "SpeakTextCriterion", "SayCurrentConditionsCriterion",
                                            "SeparatorCriterion"));
}

TEST_F(Monitor, ABaseThatComesToNothingGivesNoMonitor) {
    m_world.plugInHost().admitsAll = false;
    EXPECT_EQ(makePlugIn<QRVVigilPlugIn>(m_agent, nullptr), nullptr);
}

TEST_F(Monitor, StartObservesOnlyWhenActive) {
    EXPECT_EQ(m_monitor->start(), nullptr);
    EXPECT_EQ(observers(), 0u);
    m_monitor->setEvaluating(true);
    EXPECT_EQ(observers(), 0u) << "the switch alone changes nothing";
    m_monitor->start();
    EXPECT_EQ(observers(), 1u);
    m_monitor->stop();
    EXPECT_EQ(observers(), 0u);
}

TEST_F(Monitor, SwitchedOffWhileRunningItGoesOnObservingThroughStop) {
    m_monitor->setEvaluating(true);
    m_monitor->start();
    m_monitor->setEvaluating(false);
    m_monitor->stop();
    EXPECT_EQ(observers(), 1u);
}

TEST_F(Monitor, WhatStandsInTheWayOfStartAndStopIsPassedOnAndObservationStaysAsItWas) {
    m_monitor->setEvaluating(true);
    m_world.plugInHost().onStart = std::make_shared<FakeObstacle>();
    EXPECT_EQ(m_monitor->start(), m_world.plugInHost().onStart);
    EXPECT_EQ(observers(), 0u);
    m_world.plugInHost().onStart = nullptr;
    m_monitor->start();
    m_world.plugInHost().onStop = std::make_shared<FakeObstacle>();
    EXPECT_EQ(m_monitor->stop(), m_world.plugInHost().onStop);
    EXPECT_EQ(observers(), 1u);
}

TEST_F(Monitor, TheActivateButtonDoesNothingOfItsOwn) {
    m_monitor->actionNamed("activateButtonClicked:")->perform(*m_monitor, nullptr);
    EXPECT_FALSE(m_monitor->evaluating());
    EXPECT_EQ(observers(), 0u);
}

TEST_F(Monitor, OneThatDiesWhileObservingIsForgotten) {
    m_monitor->setEvaluating(true);
    m_monitor->start();
    m_monitor.reset();
    EXPECT_EQ(observers(), 0u);
    EXPECT_TRUE(FakeAgent::announce(m_agent, {}).empty());
}

TEST_F(Monitor, ItsStateIsReachedByNameAndSetsOfAWrongKindAreRefused) {
    int heard = 0;
    const auto token = m_monitor->propertyNamed("evaluating")->observe(*m_monitor, [&] { ++heard; });
    EXPECT_TRUE(m_monitor->propertyNamed("evaluating")->set(*m_monitor, Value(true)));
    EXPECT_TRUE(m_monitor->evaluating());
    EXPECT_EQ(heard, 1);
    EXPECT_FALSE(m_monitor->propertyNamed("evaluating")->set(*m_monitor, Value("yes")));
    EXPECT_TRUE(m_monitor->propertyNamed("retriggerInterval")->set(*m_monitor, Value(0.5)));
    EXPECT_EQ(m_monitor->retriggerInterval(), Number(0.5));
    EXPECT_EQ(*m_monitor->propertyNamed("actionStatus")->get(*m_monitor).as<std::string>(),
              "Check Activate to start.");
    EXPECT_EQ(m_monitor->propertyNamed("nonsense"), nullptr);
}

TEST_F(Monitor, PluralIsEmptyForOneAlone) {
    EXPECT_EQ(QRVVigilPlugIn::getPlural(1), "");
    for (const int count : {0, 2, -1})
        EXPECT_EQ(QRVVigilPlugIn::getPlural(count), "s") << count;
}

TEST_F(Monitor, TheRunTimeTextPrintsWhateverDateThereIs) {
    EXPECT_EQ(m_monitor->getRunTime(), "Next trigger at 0001-01-01 00:00:00 +0000");
    m_monitor->setRetriggerDate(std::nullopt);
    EXPECT_EQ(m_monitor->getRunTime(), "Next trigger at (null)");
}

TEST_F(Monitor, TheTimerTextCountsDaysHoursAndMinutesAndKeepsTheTimeOfDay) {
    m_world.setNow(parseDate("2026-11-21T14:05:09Z").value());
    EXPECT_EQ(m_monitor->getTimerRunTime(93784),
              "\nActive 1 day, 2 hrs and 3 mins.  Last checked at 14:05.09 hrs.");
    EXPECT_EQ(m_monitor->dateLastDbPull(), "14:05.09");
    EXPECT_EQ(m_monitor->getTimerRunTime(0),
              "\nActive 0 days, 0 hrs and 0 mins.  Last checked at 14:05.09 hrs.");
    EXPECT_EQ(m_monitor->getTimerRunTime(59),
              "\nActive 0 days, 0 hrs and 0 mins.  Last checked at 14:05.09 hrs.");
    EXPECT_EQ(m_monitor->getTimerRunTime(86400),
              "\nActive 1 day, 0 hrs and 0 mins.  Last checked at 14:05.09 hrs.");
    EXPECT_EQ(m_monitor->getTimerRunTime(-90061),
              "\nActive -1 days, -1 hrs and -1 mins.  Last checked at 14:05.09 hrs.");
    EXPECT_EQ(m_monitor->getTimerRunTime(std::numeric_limits<std::int32_t>::max()),
              "\nActive 24855 days, 3 hrs and 14 mins.  Last checked at 14:05.09 hrs.");
    EXPECT_EQ(m_monitor->getTimerRunTime(std::numeric_limits<std::int32_t>::min()),
              "\nActive -24855 days, -3 hrs and -14 mins.  Last checked at 14:05.09 hrs.");
    EXPECT_EQ(m_monitor->getTimerRunTime(-59),
              "\nActive 0 days, 0 hrs and 0 mins.  Last checked at 14:05.09 hrs.");
    m_world.setZone(-2 * 3600);
    m_monitor->getTimerRunTime(1);
    EXPECT_EQ(m_monitor->dateLastDbPull(), "12:05.09") << "the time of day is the user's";
}

}  // namespace
}  // namespace vigil
