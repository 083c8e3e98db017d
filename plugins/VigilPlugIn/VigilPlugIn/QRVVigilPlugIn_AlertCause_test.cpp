#include <stdexcept>

#include <gmock/gmock.h>

#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AlertCause : public testing::Test {
  protected:
    static AgentProperty number(const std::string& key, double value, const std::string& name,
                                const std::string& shown) {
        auto label = std::make_shared<AgentPropertyLabel>();
        label->propertyName = key;
        label->name = name;
        return AgentProperty(std::move(label),
                             {.value = value, .unitValue = value, .unitStringValueWithUnitShort = shown});
    }
    static AgentProperty text(const std::string& key, const std::string& value) {
        auto label = std::make_shared<AgentPropertyLabel>();
        label->propertyName = label->name = key;
        label->type = kTextType;
        return AgentProperty(std::move(label), {.stringValue = value});
    }
    static AgentProperty plain(const std::string& key, double value) {
        return number(key, value, "<" + key + ">", numberText(value));
    }

    void given(const std::string& condition, std::vector<AgentProperty> readings) {
        m_monitor->setPredicate(ConditionPredicate::predicateWithFormat(condition).value());
        m_agent->setProperties(std::move(readings));
    }
    std::string explained(const std::string& condition, std::vector<AgentProperty> readings) {
        given(condition, std::move(readings));
        m_monitor->determineWhatPartOfPredicateCauseAlert();
        return m_monitor->actionStatus();
    }
    /// The status after a failure of that kind.
    template <class Failure>
    std::string left(const std::string& condition, std::vector<AgentProperty> readings) {
        given(condition, std::move(readings));
        EXPECT_THROW(m_monitor->determineWhatPartOfPredicateCauseAlert(), Failure) << condition;
        return m_monitor->actionStatus();
    }

    FakeWorld m_world;
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
    std::shared_ptr<QRVVigilPlugIn> m_monitor = makePlugIn<QRVVigilPlugIn>(m_agent, nullptr);
};

const char* const kDefault = "(windChill.unitValue < 10 OR windSpeed.unitValue > 25)";

TEST_F(AlertCause, NamesEveryComparisonThatHolds) {
    EXPECT_EQ(explained(kDefault, {number("windChill", 8, "Wind chill", "8 °C"),
                                   number("windSpeed", 30, "Wind speed", "30 kt")}),
              "Alert was caused by Wind chill that is now 8 °C & Wind speed that is now 30 kt.");
}

TEST_F(AlertCause, LeavesOutWhatDoesNotHold) {
    EXPECT_EQ(explained(kDefault, {number("windChill", 12, "Wind chill", "12 °C"),
                                   number("windSpeed", 30, "Wind speed", "30 kt")}),
              "Alert was caused by Wind speed that is now 30 kt.");
}

TEST_F(AlertCause, ThePiecesFollowTheTextWhateverTheOrderOfTheReadings) {
    EXPECT_EQ(explained(kDefault, {number("windSpeed", 30, "Wind speed", "30 kt"),
                                   number("windChill", 8, "Wind chill", "8 °C")}),
              "Alert was caused by Wind chill that is now 8 °C & Wind speed that is now 30 kt.");
}

TEST_F(AlertCause, WhereNothingHoldsTheSentenceNamesNothing) {
    EXPECT_EQ(explained(kDefault, {plain("windChill", 12), plain("windSpeed", 3)}), "Alert was caused by .");
}

TEST_F(AlertCause, OneComparisonTakesNoAmpersand) {
    EXPECT_EQ(explained("P.unitValue > 1", {plain("P", 2)}), "Alert was caused by <P> that is now 2.");
}

TEST_F(AlertCause, InAConjunctionEachPartIsJudgedOnItsOwn) {
    EXPECT_EQ(explained("P.unitValue > 1 AND Q.unitValue > 1", {plain("P", 2), plain("Q", 0)}),
              "Alert was caused by <P> that is now 2.");
}

TEST_F(AlertCause, AKeyThatStandsTwiceCountsOnceAndItsComparisonsAreOnePiece) {
    EXPECT_EQ(explained("P.unitValue > 1 AND P.unitValue < 5", {plain("P", 2)}),
              "Alert was caused by <P> that is now 2.");
    EXPECT_EQ(explained("P.unitValue > 1 AND P.unitValue < 5", {plain("P", 7)}), "Alert was caused by .");
    EXPECT_EQ(explained("P.unitValue > 1 AND P.unitValue < 5", {plain("P", 0)}), "Alert was caused by .");
    EXPECT_EQ(
        explained("P.unitValue > 1 AND P.unitValue < 5 AND Q.unitValue == 0", {plain("P", 7), plain("Q", 0)}),
        "Alert was caused by <Q> that is now 0.");
}

TEST_F(AlertCause, ReadingsThatTheConditionDoesNotNameChangeNothing) {
    EXPECT_EQ(explained("Q.unitValue > 1", {plain("x", 9), plain("Q", 2), plain("y", 9)}),
              "Alert was caused by <Q> that is now 2.");
}

TEST_F(AlertCause, WithoutReadingsNothingIsExplained) {
    EXPECT_EQ(explained(kDefault, {}), "Alert was caused by .");
}

TEST_F(AlertCause, AComparisonWhoseKeyTheStationLacksIsPartOfThePieceBefore) {
    EXPECT_EQ(explained("P.unitValue > 1 OR gone.unitValue > 1", {plain("P", 0)}), "Alert was caused by .");
    EXPECT_EQ(explained("P.unitValue > 1 AND gone.unitValue != 1", {plain("P", 2)}),
              "Alert was caused by <P> that is now 2.");
    EXPECT_EQ(explained("gone.unitValue != 1 OR P.unitValue > 1", {plain("P", 2)}),
              "Alert was caused by <P> that is now 2.")
        << "what stands before the first key is in no piece";
}

TEST_F(AlertCause, AKeyInsideAKeyThatStandsLaterCutsAWordInTwo) {
    // "wind" is found first in "windSpeed"; both have one place, and the second piece is empty.
    EXPECT_EQ(left<std::out_of_range>("windSpeed.unitValue > 25", {plain("windSpeed", 30), plain("wind", 1)}),
              "Alert was caused by <windSpeed> that is now 30");
    // "Speed" lies inside: the first piece is "wind".
    EXPECT_EQ(
        left<std::out_of_range>("windSpeed.unitValue > 25", {plain("windSpeed", 30), plain("Speed", 1)}),
        "Alert was caused by ");
}

TEST_F(AlertCause, OfTwoKeysInAPieceTheFirstInTheStationsOrderIsNamed) {
    EXPECT_EQ(explained("wind.unitValue > 0 AND windSpeed.unitValue > 25", {plain("wind", 1)}),
              "Alert was caused by .")
        << "windSpeed is in the piece and has no reading";
    EXPECT_EQ(left<std::out_of_range>("windSpeed.unitValue > 25", {plain("wind", 1), plain("windSpeed", 30)}),
              "Alert was caused by <wind> that is now 1");
}

TEST_F(AlertCause, AKeyInsideAQuotedTextEndsThePieceThere) {
    EXPECT_EQ(left<std::invalid_argument>("sky.stringValue == \"rain\" OR rain.unitValue > 1",
                                          {text("sky", "rain"), plain("rain", 2)}),
              "Alert was caused by ");
}

TEST_F(AlertCause, AKeyThatOccursInAQuotedTextAloneStartsThePieceThere) {
    EXPECT_EQ(left<std::invalid_argument>("sky.stringValue != \"P\"", {plain("P", 2)}),
              "Alert was caused by ");
    // What stands between two keys inside the quotes may well be a comparison.
    EXPECT_EQ(left<std::invalid_argument>("sky.stringValue != \"P.unitValue > 1 OR Q\"",
                                          {plain("P", 2), plain("Q", 2)}),
              "Alert was caused by <P> that is now 2");
}

TEST_F(AlertCause, AKeyInsideTheNameOfAMemberCutsThere) {
    // "a" is found first in "unitValue" and not where it is a key.
    EXPECT_EQ(left<std::out_of_range>("P.unitValue > 1 OR a.unitValue > 1", {plain("P", 2), plain("a", 2)}),
              "Alert was caused by ");
}

TEST_F(AlertCause, AQuotedTextMayHoldAConnective) {
    EXPECT_EQ(explained("sky.stringValue == \"wet OR dry\" OR P.unitValue > 1",
                        {text("sky", "wet OR dry"), plain("P", 0)}),
              "Alert was caused by sky that is now wet OR dry.");
}

TEST_F(AlertCause, APieceThatEndsInAConnectiveIsNoCondition) {
    EXPECT_EQ(left<std::invalid_argument>("P.unitValue > 1 AND (Q.unitValue > 1 OR K.unitValue > 1)",
                                          {plain("P", 2), plain("Q", 2), plain("K", 2)}),
              "Alert was caused by ");
}

TEST_F(AlertCause, APieceWithHalfAPairOfParenthesesIsNoCondition) {
    EXPECT_EQ(left<std::invalid_argument>("(P.unitValue > 1 AND Q.unitValue > 1) OR K.unitValue > 1",
                                          {plain("P", 2), plain("Q", 2), plain("K", 2)}),
              "Alert was caused by <P> that is now 2");
}

TEST_F(AlertCause, AnEmptyKeyOccursNowhere) {
    EXPECT_EQ(explained("P.unitValue > 1", {plain("", 1), plain("P", 2)}),
              "Alert was caused by <P> that is now 2.");
}

TEST_F(AlertCause, EmptiesTheListOfKeysAndKeepsItEmpty) {
    m_monitor->setPropertyArray(std::make_shared<QRVVigilPlugIn::Names>(QRVVigilPlugIn::Names{"a"}));
    const auto before = m_monitor->propertyArray();
    explained("P.unitValue > 1", {plain("P", 2)});
    EXPECT_THAT(*m_monitor->propertyArray(), IsEmpty());
    EXPECT_THAT(*before, ElementsAre("a")) << "a new list, the old one is somebody's";
    m_monitor->setPropertyArray(before);
    left<std::invalid_argument>("sky.stringValue != \"P\"", {plain("P", 2)});
    EXPECT_THAT(*m_monitor->propertyArray(), IsEmpty()) << "also where the explanation breaks off";
}

TEST_F(AlertCause, ObserversOfTheStatusSeeEachStep) {
    std::vector<std::string> seen;
    const auto token = m_monitor->propertyNamed("actionStatus")->observe(*m_monitor, [&] {
        seen.push_back(m_monitor->actionStatus());
    });
    explained("P.unitValue > 1 OR Q.unitValue > 1", {plain("P", 2), plain("Q", 3)});
    EXPECT_THAT(seen, ElementsAre("Alert was caused by ", "Alert was caused by <P> that is now 2",
                                  "Alert was caused by <P> that is now 2 & ",
                                  "Alert was caused by <P> that is now 2 & <Q> that is now 3",
                                  "Alert was caused by <P> that is now 2 & <Q> that is now 3."));
}

TEST_F(AlertCause, TheStatusBeforeIsReplacedNextTriggerTailsIncluded) {
    m_monitor->setActionStatus("before");
    EXPECT_EQ(explained(kDefault, {}), "Alert was caused by .");
}

TEST_F(AlertCause, AMonitorWithoutAConditionExplainsNothing) {
    given(kDefault, {plain("P", 1)});
    m_monitor->setPredicate(nullptr);
    m_monitor->determineWhatPartOfPredicateCauseAlert();
    EXPECT_EQ(m_monitor->actionStatus(), "Alert was caused by .");
}

TEST_F(AlertCause, TheLongestConditionThereIsCanBeExplained) {
    const std::string frame = "sky.stringValue == \"\"";
    const std::string filled =
        frame.substr(0, frame.size() - 1) + std::string((1u << 20) - frame.size(), 'x');
    EXPECT_EQ(explained(filled + "\"", {text("sky", "")}), "Alert was caused by .");
}

TEST_F(AlertCause, AControlCanAskForIt) {
    given("P.unitValue > 1", {plain("P", 2)});
    const auto* action = m_monitor->actionNamed("determineWhatPartOfPredicateCauseAlert");
    ASSERT_NE(action, nullptr);
    action->perform(*m_monitor, nullptr);
    EXPECT_EQ(m_monitor->actionStatus(), "Alert was caused by <P> that is now 2.");
}

}  // namespace
}  // namespace vigil
