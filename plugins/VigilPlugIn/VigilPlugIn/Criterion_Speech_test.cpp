#include <stdexcept>

#include <gmock/gmock.h>

#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Actions.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/SpeechWait.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Report = FakeSpeech::Report;

class SpeechActions : public testing::Test {
  protected:
    void speak(const std::string& text) {
        m_speak->performActionWithDisplayValues({"Speak Text", std::make_shared<TextField>(text)});
    }
    void say(const DisplayValue& choice) {
        m_say->performActionWithDisplayValues({"Speak Conditions", choice});
    }
    FakeSpeech& speech() { return m_world.speech(); }
    std::vector<Date>& turns() { return m_world.currentRunLoop().runs; }

    FakeWorld m_world;
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
    std::shared_ptr<SpeakTextCriterion> m_speak = SpeakTextCriterion::criterionWithAgent(m_agent);
    std::shared_ptr<SayCurrentConditionsCriterion> m_say =
        SayCurrentConditionsCriterion::criterionWithAgent(m_agent);
};

TEST_F(SpeechActions, TheTypedTextIsSpokenAsItIs) {
    speak("  Gale <b>& rain</b> %@ ");
    EXPECT_THAT(m_world.effects(), ElementsAre("speak   Gale <b>& rain</b> %@ ", "spoken"));
    EXPECT_TRUE(m_speak->speechDone());
    EXPECT_TRUE(speech().speeches.at(0).hadDelegate);
}

TEST_F(SpeechActions, EmptyAndAbsentTextsAreHandedOverToo) {
    speak("");
    m_speak->performActionWithDisplayValues({"Speak Text", std::make_shared<PopUpButton>()});
    ASSERT_EQ(speech().speeches.size(), 2u);
    EXPECT_EQ(speech().speeches[0].text, "");
    EXPECT_EQ(speech().speeches[1].text, std::nullopt);
}

TEST_F(SpeechActions, TheWaitTurnsTheLoopInQuarterSecondsAndEndsAtMostOneOfThemLate) {
    speech().report = Report::Loop;
    speech().duration = 1.1;
    const Date begin = m_world.now();
    speak("Gale");
    EXPECT_NEAR(m_world.now().secondsSince(begin), 1.25, 1e-6);
    ASSERT_EQ(turns().size(), 5u);
    for (std::size_t i = 0; i < turns().size(); ++i)
        EXPECT_NEAR(turns()[i].secondsSince(begin), 0.25 * static_cast<double>(i + 1), 1e-6);
    EXPECT_EQ(kSpeechStep, 0.25);
}

TEST_F(SpeechActions, ALoopThatReturnsEarlyIsGivenAQuarterSecondFromThenOn) {
    speech().report = Report::ByHand;
    const Date begin = m_world.now();
    int turned = 0;
    m_world.currentRunLoop().onRun = [&](Date until) {
        EXPECT_NEAR(until.secondsSince(m_world.now()), 0.25, 1e-6);
        if (++turned == 1) m_world.mainQueue().dispatchAsync([&] { m_world.advance(0.1); });
        if (turned == 3) speech().end();
    };
    speak("Gale");
    EXPECT_EQ(turned, 3);
    EXPECT_NEAR(turns()[1].secondsSince(begin), 0.35, 1e-6);
}

TEST_F(SpeechActions, AReportFromWithinTheCallToSpeakNeedsNoTurnOfTheLoop) {
    speak("Gale");
    EXPECT_THAT(turns(), IsEmpty());
}

TEST_F(SpeechActions, AReportThatComesThroughTheMainQueueEndsTheWait) {
    speech().report = Report::Posted;
    speak("Gale");
    EXPECT_TRUE(m_speak->speechDone());
    EXPECT_EQ(turns().size(), 1u);
}

TEST_F(SpeechActions, AReportOnAnotherThreadEndsTheWait) {
    speech().report = Report::OtherThread;
    speak("Gale");
    EXPECT_TRUE(m_speak->speechDone());
    EXPECT_EQ(turns().size(), 4u);
}

TEST_F(SpeechActions, AReportThatSpeakingDidNotFinishEndsTheWaitAllTheSame) {
    speech().report = Report::Loop;
    speech().finished = false;
    speak("Gale");
    say("Yes");
    EXPECT_THAT(m_world.effects(),
                ElementsAre("speak Gale", "not spoken", testing::StartsWith("speak There"), "not spoken"));
    EXPECT_TRUE(m_speak->speechDone());
    EXPECT_TRUE(m_say->speechDone());
}

TEST_F(SpeechActions, SpeechThatCouldNotBeginIsWaitedForLikeAnyOther) {
    speech().report = Report::Loop;
    speech().begins = false;
    speak("Gale");
    EXPECT_EQ(turns().size(), 4u) << "what starting answers does not count";
}

TEST_F(SpeechActions, AnEndThatIsLongInComingIsWaitedForWithoutABound) {
    speech().report = Report::ByHand;
    int turned = 0;
    m_world.currentRunLoop().onRun = [&](Date) {
        EXPECT_FALSE(m_speak->speechDone());
        if (++turned == 20000) speech().end();
    };
    speak("Gale");
    EXPECT_EQ(turned, 20000) << "some 80 minutes";
}

TEST_F(SpeechActions, WhatArrivesDuringTheWaitIsServed) {
    speech().report = Report::Loop;
    bool served = false;
    m_world.mainQueue().dispatchAsync([&] { served = !m_speak->speechDone(); });
    speak("Gale");
    EXPECT_TRUE(served);
}

TEST_F(SpeechActions, NoSynthesizerIsKeptAfterwards) {
    speech().report = Report::Loop;
    int during = 0;
    m_world.currentRunLoop().onRun = [&](Date) { during = speech().living(); };
    speak("Gale");
    EXPECT_EQ(during, 1);
    EXPECT_EQ(speech().living(), 0);
}

TEST_F(SpeechActions, TheFlagIsFalseWhileItSpeaksAndTrueUntilTheNextPerformance) {
    speech().report = Report::Loop;
    EXPECT_FALSE(m_speak->speechDone());
    speak("one");
    EXPECT_TRUE(m_speak->speechDone());
    m_world.currentRunLoop().onRun = [&](Date) { EXPECT_FALSE(m_speak->speechDone()); };
    speak("two");
    EXPECT_TRUE(m_speak->speechDone());
    m_speak->setSpeechDone(false);
    EXPECT_FALSE(m_speak->speechDone());
}

TEST_F(SpeechActions, ConditionsWithNoSpeakNothingAndReturnAtOnceWithTheFlagFalse) {
    say("Yes");
    ASSERT_TRUE(m_say->speechDone());
    speech().report = Report::ByHand;
    say("No");
    EXPECT_EQ(speech().speeches.size(), 1u);
    EXPECT_FALSE(m_say->speechDone());
    EXPECT_THAT(turns(), IsEmpty());
}

TEST_F(SpeechActions, ConditionsWithYesSpeakTheSiteFollowedByQuestionMarks) {
    m_agent->setSiteName(SiteName("Aarhus"));
    say("Yes");
    EXPECT_EQ(speech().speeches.at(0).text, "There is a Vigil for Aarhus. ?????");
}

TEST_F(SpeechActions, ASiteWithoutANameIsCalledMissing) {
    say("Yes");
    EXPECT_EQ(speech().speeches.at(0).text, "There is a Vigil for (LOCATION DATA MISSING IN AGENT). ?????");
}

TEST_F(SpeechActions, OnlyTheExactTextNoKeepsQuiet) {
    for (const DisplayValue& choice : {DisplayValue{"no"}, DisplayValue{"No "}, DisplayValue{""},
                                       DisplayValue{}, DisplayValue{std::make_shared<TextField>("No")}})
        say(choice);
    EXPECT_EQ(speech().speeches.size(), 5u);
}

TEST_F(SpeechActions, OfTwoRowsTheSecondBeginsWhenTheFirstHasEnded) {
    speech().report = Report::Loop;
    const auto monitor = makePlugIn<QRVVigilPlugIn>(m_agent, nullptr);
    const auto row = [&](const char* text) {
        return DisplayValueList{"Speak Text", std::make_shared<TextField>(text)};
    };
    monitor->setRuleEditorStoredCriteria(
        std::make_shared<QRVVigilPlugIn::CriteriaRows>(QRVVigilPlugIn::CriteriaRows{
            {m_speak}, {m_speak}, {SayCurrentConditionsCriterion::criterionWithAgent(m_agent)}}));
    monitor->setRuleEditorStoredDisplayValues(std::make_shared<QRVVigilPlugIn::DisplayValueRows>(
        QRVVigilPlugIn::DisplayValueRows{row("one"), row("two"), {"Speak Conditions", "No"}}));
    monitor->performActions();
    EXPECT_THAT(m_world.effects(), ElementsAre("speak one", "spoken", "speak two", "spoken"));
    EXPECT_EQ(speech().speeches[1].begun.secondsSince(speech().speeches[0].begun), 1.0);
}

TEST_F(SpeechActions, WithoutAStationAndAnOpenWorldNothingIsSpokenAndNothingWaits) {
    SpeakTextCriterion::criterionWithAgent(nullptr)->performActionWithDisplayValues({"Speak Text", "x"});
    SayCurrentConditionsCriterion::criterionWithAgent(nullptr)->performActionWithDisplayValues(
        {"Speak Conditions", "Yes"});
    EXPECT_THAT(m_world.effects(), IsEmpty());
    const World::Scope open(m_world);
    SpeakTextCriterion::criterionWithAgent(nullptr)->performActionWithDisplayValues({"Speak Text", "x"});
    EXPECT_THAT(m_world.effects(), ElementsAre("speak x", "spoken"));
}

TEST_F(SpeechActions, AListWithoutASecondDisplayValueThrowsWithTheFlagFalse) {
    m_speak->setSpeechDone(true);
    EXPECT_THROW(m_speak->performActionWithDisplayValues({"Speak Text"}), std::out_of_range);
    EXPECT_FALSE(m_speak->speechDone());
    EXPECT_THROW(m_say->performActionWithDisplayValues({"Speak Conditions"}), std::out_of_range);
}

}  // namespace
}  // namespace vigil
