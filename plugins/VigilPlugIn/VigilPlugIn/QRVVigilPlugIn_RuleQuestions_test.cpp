#include <stdexcept>

#include <gmock/gmock.h>

#include "platform/ClassRegistry.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Actions.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Display.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/ModuleClasses.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

// What the monitor answers a rule editor that asks for its tree.

namespace vigil {
namespace {

class RuleQuestions : public testing::Test {
  protected:
    RuleQuestions() {
        for (const ModuleClass& entry : moduleClasses())
            ClassRegistry::shared().add(entry.name, entry.make, std::make_shared<Bundle>());
    }

    static constexpr auto kSimple = RuleEditorRowType::Simple;

    FakeWorld m_world;
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
    std::shared_ptr<QRVVigilPlugIn> m_monitor = makePlugIn<QRVVigilPlugIn>(m_agent, nullptr);
};

TEST_F(RuleQuestions, TheChildrenOfTheAbsentNodeAreTheRootListWithSeparatorsThirdAndSixth) {
    RuleEditor editor;
    ASSERT_EQ(m_monitor->ruleEditorNumberOfChildrenForCriterion(editor, nullptr, kSimple), 6);
    std::vector<std::string> shown;
    for (std::int64_t i = 0; i < 6; ++i) {
        const auto root = m_monitor->ruleEditorChildForCriterion(editor, i, nullptr, kSimple);
        EXPECT_EQ(root, m_monitor->criteria()->at(static_cast<std::size_t>(i)));
        const auto value = m_monitor->ruleEditorDisplayValueForCriterion(editor, root, 0);
        shown.push_back(stringValue(value).value_or(
            std::holds_alternative<std::shared_ptr<MenuItem>>(value) ? "---" : "nothing"));
    }
    EXPECT_THAT(shown, testing::ElementsAre("Run script", "Play Sound", "---", "Speak Text",
                                            "Speak Conditions", "---"));
}

TEST_F(RuleQuestions, ANodesChildrenAreItsOwnAndControlsAreNewOnEveryCall) {
    RuleEditor editor;
    const auto root = SayCurrentConditionsCriterion::criterionWithAgent(m_agent);
    EXPECT_EQ(m_monitor->ruleEditorNumberOfChildrenForCriterion(editor, root, kSimple), 2);
    EXPECT_EQ(m_monitor->ruleEditorChildForCriterion(editor, 1, root, kSimple), root->childAtIndex(1));
    const auto field = TextFieldCriterion::criterionWithAgent(m_agent);
    EXPECT_NE(m_monitor->ruleEditorDisplayValueForCriterion(editor, field, 0),
              m_monitor->ruleEditorDisplayValueForCriterion(editor, field, 0));
}

TEST_F(RuleQuestions, RowAndRowTypeMakeNoDifference) {
    RuleEditor editor;
    constexpr auto kOther = static_cast<RuleEditorRowType>(1);  // of an editor that has more kinds of rows
    EXPECT_EQ(m_monitor->ruleEditorNumberOfChildrenForCriterion(editor, nullptr, kOther), 6);
    const auto root = m_monitor->ruleEditorChildForCriterion(editor, 4, nullptr, kOther);
    EXPECT_EQ(root, m_monitor->criteria()->at(4));
    EXPECT_EQ(m_monitor->ruleEditorNumberOfChildrenForCriterion(editor, root, kOther), 2);
    const auto no = m_monitor->ruleEditorChildForCriterion(editor, 1, root, kOther);
    for (const std::int64_t row : {-1, 0, 999})
        EXPECT_EQ(m_monitor->ruleEditorDisplayValueForCriterion(editor, no, row), DisplayValue{"No"});
}

TEST_F(RuleQuestions, AnIndexOutsideThrowsAndAnObjectThatIsNoNodeHasNothing) {
    RuleEditor editor;
    for (const std::int64_t index : {-1, 6}) {
        EXPECT_THROW(m_monitor->ruleEditorChildForCriterion(editor, index, nullptr, kSimple),
                     std::out_of_range);
        EXPECT_THROW(m_monitor->ruleEditorChildForCriterion(
                         editor, index, SpeakTextCriterion::criterionWithAgent(m_agent), kSimple),
                     std::out_of_range);
    }
    const auto stranger = std::make_shared<TextField>();
    EXPECT_EQ(m_monitor->ruleEditorNumberOfChildrenForCriterion(editor, stranger, kSimple), 0);
    EXPECT_EQ(m_monitor->ruleEditorChildForCriterion(editor, 0, stranger, kSimple), nullptr);
    EXPECT_EQ(m_monitor->ruleEditorDisplayValueForCriterion(editor, stranger, 0), DisplayValue{});
    m_monitor->setCriteria(nullptr);
    EXPECT_EQ(m_monitor->ruleEditorNumberOfChildrenForCriterion(editor, nullptr, kSimple), 0);
    EXPECT_EQ(m_monitor->ruleEditorChildForCriterion(editor, 0, nullptr, kSimple), nullptr);
}

}  // namespace
}  // namespace vigil
