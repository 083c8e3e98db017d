#include <stdexcept>

#include <gmock/gmock.h>

#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Actions.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Line = RecordingLog::Line;

class SendSMS : public testing::Test {
  protected:
    void perform(const DisplayValue& number) {
        SendSMSCriterion::criterionWithAgent(m_agent)->performActionWithDisplayValues(
            {"Send an SMS message to", number});
    }
    void type(const std::string& number) { perform(std::make_shared<TextField>(number)); }
    const std::vector<std::string>& scripts() { return m_world.automationScripts().sources; }

    FakeWorld m_world;
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
};

TEST_F(SendSMS, DigitsSendTheMessageToThemBehindAPlus) {
    m_agent->setSiteName(SiteName("Aarhus"));
    type("4512345678");
    EXPECT_THAT(scripts(),
                ElementsAre("tell application \"Messages\"\n"
                            "         send \"Vigil for Aarhus. ?????\" to buddy \"+4512345678\" of service "
                            "\"SMS\"\n"
                            "         end tell"));
    EXPECT_THAT(m_world.log().lines(), IsEmpty());
}

TEST_F(SendSMS, TheFormatWithoutItsTwoValuesHas96CharactersWithTheirPlaceholders) {
    m_agent->setSiteName(SiteName(""));
    type("1");
    ASSERT_EQ(scripts().size(), 1u);
    const std::size_t values = std::string("Vigil for . ?????").size() + 1;
    EXPECT_EQ(scripts()[0].size() - values + 2 * std::string("%@").size(), 96u);
}

TEST_F(SendSMS, ASiteWithoutANameIsCalledMissing) {
    type("1");
    ASSERT_EQ(scripts().size(), 1u);
    EXPECT_THAT(scripts()[0],
                testing::HasSubstr("send \"Vigil for (LOCATION DATA MISSING IN AGENT). ?????\" to"));
}

TEST_F(SendSMS, ALetterInTheNumberIsALineInTheLogAndSendsNothing) {
    type("45x1");
    EXPECT_THAT(m_world.log().lines(),
                ElementsAre(Line{3, "send sms number is not all numbers:45x1 #SendSMSCriterion"}));
    EXPECT_THAT(scripts(), IsEmpty());
}

TEST_F(SendSMS, BlanksDashesBracketsAndNoDigitsAtAllAreRefused) {
    for (const char* number :
         {"", " ", "45 12", "45-12", "(45)12", "+", "-", "++1", "1+", "4.5", "1,000", " 1", "1 ", "\xd9\xa1"})
        type(number);
    EXPECT_EQ(m_world.log().lines().size(), 14u);
    EXPECT_EQ(m_world.log().lines()[0].message, "send sms number is not all numbers: #SendSMSCriterion");
    EXPECT_THAT(scripts(), IsEmpty());
}

TEST_F(SendSMS, AnAbsentNumberReadsAsAbsentInTheLog) {
    perform(DisplayValue{});
    perform(std::make_shared<PopUpButton>());
    const Line absent{3, "send sms number is not all numbers:(null) #SendSMSCriterion"};
    EXPECT_THAT(m_world.log().lines(), ElementsAre(absent, absent));
}

TEST_F(SendSMS, ASignIsTakenAndTheNumberIsWrittenAsTyped) {
    type("+45");
    type("-0045");
    ASSERT_EQ(scripts().size(), 2u);
    EXPECT_THAT(scripts()[0], testing::HasSubstr("buddy \"++45\""));
    EXPECT_THAT(scripts()[1], testing::HasSubstr("buddy \"+-0045\""));
}

TEST_F(SendSMS, ANumberOfAnyLengthIsANumber) {
    const std::string digits(100000, '7');
    type(digits);
    ASSERT_EQ(scripts().size(), 1u);
    EXPECT_THAT(scripts()[0], testing::HasSubstr("buddy \"+" + digits + "\""));
}

TEST_F(SendSMS, QuotesAndPlaceholdersInTheSitesNameAreInsertedAsTheyAre) {
    m_agent->setSiteName(SiteName("\"%@\"\\"));
    type("1");
    ASSERT_EQ(scripts().size(), 1u);
    EXPECT_THAT(scripts()[0], testing::HasSubstr("send \"Vigil for \"%@\"\\. ?????\" to buddy \"+1\" of"));
}

TEST_F(SendSMS, ALogThatDoesNotTakeTheLevelIsNotSentTheLine) {
    m_world.log().setHighestLevel(2);
    type("x");
    EXPECT_THAT(m_world.log().lines(), IsEmpty());
}

TEST_F(SendSMS, AScriptThatFailsIsNotToldToAnybody) {
    m_world.automationScripts().failure = Error{"no messages here"};
    EXPECT_NO_THROW(type("1"));
    EXPECT_THAT(m_world.log().lines(), IsEmpty());
}

TEST_F(SendSMS, AListWithoutASecondDisplayValueThrows) {
    const auto action = SendSMSCriterion::criterionWithAgent(m_agent);
    EXPECT_THROW(action->performActionWithDisplayValues({"Send an SMS message to"}), std::out_of_range);
}

}  // namespace
}  // namespace vigil
