#include <stdexcept>

#include <gmock/gmock.h>

#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

// An explanation finds the station's keys by their letters alone. Here each cut leaves whole comparisons, so
// the sentence comes to its end, and says more or less than a reader of the condition would.

namespace vigil {
namespace {

class AlertCauseKeys : public testing::Test {
  protected:
    using KeysAndValues = std::vector<std::pair<std::string, double>>;

    /// The sentence, for readings in the order of the station; "P" is shown as "<P>".
    std::string explained(const std::string& condition, const KeysAndValues& readings) {
        std::vector<AgentProperty> properties;
        for (const auto& [key, value] : readings) {
            auto label = std::make_shared<AgentPropertyLabel>();
            label->propertyName = key;
            label->name = "<" + key + ">";
            properties.push_back(AgentProperty(std::move(label), {.value = value, .unitValue = value}));
        }
        m_agent->setProperties(std::move(properties));
        m_monitor->setPredicate(ConditionPredicate::predicateWithFormat(condition).value());
        m_monitor->determineWhatPartOfPredicateCauseAlert();
        return m_monitor->actionStatus();
    }

    FakeWorld m_world;
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
    std::shared_ptr<QRVVigilPlugIn> m_monitor = makePlugIn<QRVVigilPlugIn>(m_agent, nullptr);
};

TEST_F(AlertCauseKeys, AKeyThatBeginsAnotherIsNamedForBothWhereTheStationListsItFirst) {
    const char* const condition = "wind.unitValue > 0 AND windSpeed.unitValue > 25";
    EXPECT_EQ(explained(condition, {{"wind", 1}, {"windSpeed", 30}}),
              "Alert was caused by <wind> that is now 1 & <wind> that is now 1.");
    EXPECT_EQ(explained(condition, {{"windSpeed", 30}, {"wind", 1}}),
              "Alert was caused by <wind> that is now 1 & <windSpeed> that is now 30.");
}

TEST_F(AlertCauseKeys, AKeyThatStandsOnceMoreInALaterPieceIsNamedForThatOneWhereTheStationListsItFirst) {
    const char* const condition = "Q.unitValue > 1 AND P.unitValue > 1 AND Q.unitValue < 5";
    EXPECT_EQ(explained(condition, {{"Q", 2}, {"P", 3}}),
              "Alert was caused by <Q> that is now 2 & <Q> that is now 2.");
    EXPECT_EQ(explained(condition, {{"P", 3}, {"Q", 2}}),
              "Alert was caused by <Q> that is now 2 & <P> that is now 3.");
}

TEST_F(AlertCauseKeys, AKeyAtTheEndOfOneThatTheStationLacksBeginsThePieceThere) {
    EXPECT_EQ(explained("windSpeed.unitValue > 25", {{"Speed", 30}}),
              "Alert was caused by <Speed> that is now 30.");
    EXPECT_EQ(explained("windSpeed.unitValue > 25", {{"Speed", 20}}), "Alert was caused by .");
}

TEST_F(AlertCauseKeys, APieceThatHoldsNoKeyRepeatsTheCauseBefore) {
    // A key that begins in a piece and ends behind it.
    const char* const key = "P.unitValue != 1 O";
    EXPECT_EQ(explained("Q.unitValue > 1 OR P.unitValue != 1", {{"Q", 2}, {key, 7}}),
              "Alert was caused by <Q> that is now 2 & <Q> that is now 2.");
    EXPECT_EQ(explained("P.unitValue != 1", {{key, 7}}), "Alert was caused by .") << "and there was none";
}

TEST_F(AlertCauseKeys, KeysAreTheirLettersCapitalsIncluded) {
    EXPECT_EQ(explained("windSpeed.unitValue > 25", {{"speed", 30}, {"windspeed", 30}, {"windSpeed", 30}}),
              "Alert was caused by <windSpeed> that is now 30.");
}

}  // namespace
}  // namespace vigil
