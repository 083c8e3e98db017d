#include <algorithm>
#include <stdexcept>

#include <gmock/gmock.h>

#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Actions.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/MailScripts.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

class SendEmail : public testing::Test {
  protected:
    void perform(const DisplayValue& address) {
        SendEmailCriterion::criterionWithAgent(m_agent)->performActionWithDisplayValues(
            {"Send an email to", address});
    }
    void type(const std::string& address) { perform(std::make_shared<TextField>(address)); }
    const std::vector<std::string>& scripts() { return m_world.automationScripts().sources; }

    FakeWorld m_world;
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
};

TEST(MailScripts, HaveTheirLengthsAndLines) {
    EXPECT_EQ(kMailViewerScript.size(), 373u);
    EXPECT_EQ(kMailMessageFormat.size(), 374u);
    EXPECT_EQ(kMailClosing.size(), 63u);
    const auto lines = [](std::string_view text) { return std::count(text.begin(), text.end(), '\n') + 1; };
    EXPECT_EQ(lines(kMailViewerScript), 7);
    EXPECT_EQ(lines(kMailMessageFormat), 8);
    EXPECT_EQ(lines(kMailClosing), 4);
    EXPECT_EQ(kMailViewerScript.front(), '\n');
    EXPECT_EQ(kMailClosing.find("%@"), std::string_view::npos);
}

/// The viewer's script, written as people read it: the number of blanks, then the rest of the line.
TEST(MailScripts, TheViewersKeepsItsStrayQuoteAndItsEndOnTheLineBefore) {
    const std::string in(28, ' ');
    EXPECT_EQ(kMailViewerScript, "\n" + in + "tell application \"Mail\"\n" + in + "activate\"\n" + in +
                                     "if (count of message viewers) is 0 then\n" + in +
                                     "make new message viewer at front \n" + in +
                                     "set selected mailboxes of message viewer 1 to {inbox}" + in +
                                     "end if\n" + in + "end tell");
}

TEST_F(SendEmail, ALowerCaseAddressWithADottedLocalPartAndThreeLabelsRunsBothScripts) {
    m_agent->setSiteName(SiteName("Aarhus"));
    type("ann.berg@mail.example.org");
    ASSERT_THAT(scripts(), SizeIs(2));
    EXPECT_EQ(scripts()[0], kMailViewerScript);
    const std::string in(16, ' ');
    EXPECT_EQ(
        scripts()[1],
        "tell application \"Mail\"\n" + in +
            "set newMessage to make new outgoing message with properties {subject:\"Vigil for Aarhus\", "
            "content:\"???\" & return} \n" +
            in + " tell newMessage\n" + in + "set visible to true\n" + in + "set sender to \"Vigil\"\n" + in +
            "make new to recipient at end of to recipients with properties "
            "{address:\"ann.berg@mail.example.org\"}\n" +
            in + " tell content\n" + in + "end tell\n        send\n        end tell\n        end tell");
}

TEST_F(SendEmail, TheMessageIsTheFilledFormatFollowedDirectlyByTheClosingInElevenLines) {
    m_agent->setSiteName(SiteName("S"));
    type("a@b.c");
    std::string expected(kMailMessageFormat);
    for (const std::string value : {"Vigil for S", "???", "Vigil", "a@b.c"})
        expected.replace(expected.find("%@"), 2, value);
    expected += kMailClosing;
    ASSERT_THAT(scripts(), SizeIs(2));
    EXPECT_EQ(scripts()[1], expected);
    EXPECT_EQ(std::count(expected.begin(), expected.end(), '\n'), 10);
}

TEST_F(SendEmail, ASiteWithoutANameIsCalledMissingInTheSubject) {
    type("a@b.c");
    ASSERT_THAT(scripts(), SizeIs(2));
    EXPECT_THAT(scripts()[1], testing::HasSubstr("{subject:\"Vigil for (LOCATION DATA MISSING IN AGENT)\","));
}

TEST_F(SendEmail, NothingRunsForAnEmptyAddressACapitalTwoAddressesOrADomainWithoutADot) {
    for (const char* address : {"", "Ann@example.org", "ann@Example.org", "a@b.c,d@e.f", "a@b.c, d@e.f",
                                "a@b.c d@e.f", "ann@localhost", " a@b.c", "a@b.c\n"})
        type(address);
    EXPECT_THAT(m_world.effects(), IsEmpty());
    EXPECT_THAT(m_world.log().lines(), IsEmpty()) << "nothing is logged either";
}

TEST_F(SendEmail, ADisplayValueThatHoldsNoTextRunsNothing) {
    perform(DisplayValue{});
    perform(std::make_shared<PopUpButton>());
    EXPECT_THAT(m_world.effects(), IsEmpty());
}

TEST_F(SendEmail, QuotesBackslashesAndPlaceholdersInTheSitesNameAreInsertedAsTheyAre) {
    m_agent->setSiteName(SiteName("\"%@\" \\ %d"));
    type("a@b.c");
    ASSERT_THAT(scripts(), SizeIs(2));
    EXPECT_THAT(scripts()[1],
                testing::HasSubstr("{subject:\"Vigil for \"%@\" \\ %d\", content:\"???\" & return}"));
    EXPECT_THAT(scripts()[1], testing::HasSubstr("{address:\"a@b.c\"}"));
}

TEST_F(SendEmail, TheMessageRunsAlsoWhenTheViewerFailedAndNobodyHearsOfEither) {
    m_world.automationScripts().failure = Error{"no mail here"};
    EXPECT_NO_THROW(type("a@b.c"));
    EXPECT_THAT(scripts(), SizeIs(2));
    EXPECT_THAT(m_world.log().lines(), IsEmpty());
}

TEST_F(SendEmail, AnAddressOfAHundredThousandCharactersIsJudgedLikeAnyOther) {
    const std::string local(100000, 'a');
    type(local);
    type(local + "@b");
    EXPECT_THAT(scripts(), IsEmpty());
    type(local + "@b.c");
    EXPECT_THAT(scripts(), SizeIs(2));
}

TEST_F(SendEmail, AnActionWithoutAStationUsesTheOpenWorldAndWithoutOneDoesNothing) {
    const auto action = SendEmailCriterion::criterionWithAgent(nullptr);
    const DisplayValueList row = {"Send an email to", "a@b.c"};
    action->performActionWithDisplayValues(row);
    EXPECT_THAT(scripts(), IsEmpty());
    const World::Scope open(m_world);
    action->performActionWithDisplayValues(row);
    EXPECT_THAT(scripts(), SizeIs(2));
}

TEST_F(SendEmail, AListWithoutASecondDisplayValueThrows) {
    const auto action = SendEmailCriterion::criterionWithAgent(m_agent);
    EXPECT_THROW(action->performActionWithDisplayValues({"Send an email to"}), std::out_of_range);
}

}  // namespace
}  // namespace vigil
