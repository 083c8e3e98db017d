#include <stdexcept>

#include <gmock/gmock.h>

#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Actions.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RunScript : public testing::Test {
  protected:
    void perform(const DisplayValue& line) {
        RunScriptCriterion::criterionWithAgent(m_agent)->performActionWithDisplayValues({"Run script", line});
    }
    void type(const std::string& line) { perform(std::make_shared<TextField>(line)); }

    FakeWorld m_world;
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
};

TEST_F(RunScript, ABareNameHandsOverTheTextWithoutArgumentsAndWithTimeOut60) {
    m_world.files().setFile("/scripts/notify.sh", "echo hello");
    type("notify.sh");
    ASSERT_EQ(m_agent->scripts.size(), 1u);
    const auto& run = m_agent->scripts[0];
    EXPECT_EQ(run.source, "echo hello");
    EXPECT_THAT(run.arguments, IsEmpty());
    EXPECT_FALSE(run.hasProperty);
    EXPECT_FALSE(run.folder);
    EXPECT_EQ(run.timeout, 60);
}

TEST_F(RunScript, TwoBlanksHaveAnEmptyArgumentBetweenThemAndNothingQuotes) {
    m_world.files().setFile("/scripts/s", "x");
    type("s a  b");
    type("s \"a b\"\tc ");
    ASSERT_EQ(m_agent->scripts.size(), 2u);
    EXPECT_THAT(m_agent->scripts[0].arguments, ElementsAre("a", "", "b"));
    EXPECT_THAT(m_agent->scripts[1].arguments, ElementsAre("\"a", "b\"\tc", ""));
}

TEST_F(RunScript, ANameWithASlashReachesIntoAFolderBelow) {
    m_world.files().setFile("/scripts/roof/gust.sh", "x");
    type("roof/gust.sh");
    EXPECT_EQ(m_agent->scripts.size(), 1u);
}

TEST_F(RunScript, AMissingFileAnEmptyLineAndAValueOfAnotherKindRunNothing) {
    m_world.files().setFolder("/scripts/", {"notify.sh"});
    type("missing.sh");
    type("");
    perform(std::shared_ptr<PopUpButton>(std::make_shared<PopUpButton>()));
    perform(DisplayValue{});
    EXPECT_THAT(m_agent->scripts, IsEmpty());
    EXPECT_TRUE(m_world.log().lines().empty()) << "nothing is logged either";
}

TEST_F(RunScript, AFileThatIsNotUtf8OrAFolderRunsNothing) {
    m_world.files().setFile("/scripts/latin", "\xE9t\xE9");
    m_world.files().setFolder("/scripts/roof", {"gust.sh"});
    type("latin a");
    type("roof");
    EXPECT_THAT(m_agent->scripts, IsEmpty());
}

TEST_F(RunScript, ThePathIsTheFolderASlashAndTheFirstWordAsTyped) {
    m_world.setScriptsFolder("/srv/scripts");
    type("../other.sh a");
    type("");
    type(" lead");
    EXPECT_THAT(m_world.files().pathsRead(),
                ElementsAre("/srv/scripts/../other.sh", "/srv/scripts/", "/srv/scripts/"));
}

TEST_F(RunScript, WithoutAnAgentNothingRuns) {
    m_world.files().setFile("/scripts/s", "x");
    const World::Scope scope(m_world);
    RunScriptCriterion::criterionWithAgent(nullptr)->performActionWithDisplayValues({"Run script", "s"});
    EXPECT_THAT(m_world.files().pathsRead(), ElementsAre("/scripts/s"));
}

TEST_F(RunScript, AnEmptyFileIsHandedOver) {
    m_world.files().setFile("/scripts/empty", "");
    type("empty");
    ASSERT_EQ(m_agent->scripts.size(), 1u);
    EXPECT_EQ(m_agent->scripts[0].source, "");
}

TEST_F(RunScript, WhatTheAgentReportsIsIgnored) {
    m_world.files().setFile("/scripts/s", "x");
    m_agent->scriptError = Error{"cannot be started"};
    EXPECT_NO_THROW(type("s"));
    EXPECT_EQ(m_agent->scripts.size(), 1u);
}

TEST_F(RunScript, AListWithoutASecondDisplayValueThrows) {
    const auto action = RunScriptCriterion::criterionWithAgent(m_agent);
    EXPECT_THROW(action->performActionWithDisplayValues({"Run script"}), std::out_of_range);
}

}  // namespace
}  // namespace vigil
