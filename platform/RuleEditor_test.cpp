#include "platform/RuleEditor.hpp"

#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/support/FakeRules.hpp"

namespace vigil {
namespace {

using test::FakeRules;
using test::ruleField;
using test::RuleNode;
using test::ruleNode;
using test::ruleSeparator;
using test::shown;

class RuleEditorRows : public testing::Test {
  protected:
    RuleEditorRows() {
        m_rules->roots = {ruleSeparator(), ruleNode("Speak", {ruleField()}),
                          ruleNode("Wait", {ruleNode("Yes"), ruleNode("No")}), ruleNode("Stop")};
        m_editor->setDelegate(m_rules);
        m_editor->setNestingMode(RuleEditorNestingMode::List);
    }

    std::shared_ptr<TextField> field(std::int64_t row) const {
        return std::get<std::shared_ptr<TextField>>(m_editor->displayValuesForRow(row).at(1));
    }

    std::shared_ptr<FakeRules> m_rules = std::make_shared<FakeRules>();
    std::shared_ptr<RuleEditor> m_editor = std::make_shared<RuleEditor>();
};

TEST_F(RuleEditorRows, ANewRowStartsWithTheFirstChoicesThatAreNoSeparatorsDownToALeaf) {
    EXPECT_TRUE(m_editor->addRow(nullptr));
    EXPECT_EQ(m_editor->numberOfRows(), 1);
    EXPECT_EQ(shown(*m_editor), "Speak > []");
    const RuleEditor::Criteria path = {m_rules->roots[1], m_rules->roots[1]->children[0]};
    EXPECT_EQ(m_editor->criteriaForRow(0), path);
    m_rules->roots.erase(m_rules->roots.begin() + 1);
    m_editor->addRow(nullptr);
    EXPECT_EQ(shown(*m_editor), "Speak > [] | Wait > Yes");
}

TEST_F(RuleEditorRows, RowsAreInsertedWhereTheyAreWantedAndAppendedAtTheEnd) {
    m_editor->addRow(nullptr);
    field(0)->setStringValue("a");
    m_editor->addRow(nullptr);
    field(1)->setStringValue("b");
    EXPECT_TRUE(m_editor->insertRowAtIndex(0));
    EXPECT_EQ(shown(*m_editor), "Speak > [] | Speak > [a] | Speak > [b]");
    EXPECT_TRUE(m_editor->insertRowAtIndex(3));
    EXPECT_TRUE(m_editor->removeRowAtIndex(1));
    EXPECT_EQ(shown(*m_editor), "Speak > [] | Speak > [b] | Speak > []");
}

TEST_F(RuleEditorRows, EveryRowHasControlsOfItsOwn) {
    m_editor->addRow(nullptr);
    m_editor->addRow(nullptr);
    EXPECT_NE(field(0), field(1));
    EXPECT_EQ(field(0), field(0)) << "and the same ones whenever it is asked";
}

TEST_F(RuleEditorRows, ARowGetsTheVeryNodesAndControlsThatAreSet) {
    m_editor->addRow(nullptr);
    const auto stranger = ruleNode("Mail", {ruleField()});
    const RuleEditor::Criteria path = {stranger, stranger->children[0]};
    const RuleEditor::DisplayValues values = {std::string("Mail"), std::make_shared<TextField>("me")};
    m_editor->setCriteria(path, values, 0);
    EXPECT_EQ(m_editor->criteriaForRow(0), path);
    EXPECT_EQ(m_editor->displayValuesForRow(0), values);
    EXPECT_EQ(m_rules->changes, 2);
    m_editor->reloadCriteria();
    EXPECT_EQ(m_editor->criteriaForRow(0), path) << "also when the choices are asked for anew";
    EXPECT_EQ(m_editor->displayValuesForRow(0), values);
}

TEST_F(RuleEditorRows, TheLastRowStaysWhereOneHasToRemain) {
    m_editor->addRow(nullptr);
    m_editor->addRow(nullptr);
    m_editor->setCanRemoveAllRows(false);
    EXPECT_TRUE(m_editor->removeRowAtIndex(0));
    const int heard = m_rules->changes;
    EXPECT_FALSE(m_editor->removeRowAtIndex(0));
    EXPECT_EQ(m_editor->numberOfRows(), 1);
    EXPECT_EQ(m_rules->changes, heard) << "a refusal is no change";
    m_editor->setCanRemoveAllRows(true);
    EXPECT_TRUE(m_editor->removeRowAtIndex(0));
    EXPECT_EQ(m_editor->numberOfRows(), 0);
}

TEST_F(RuleEditorRows, SingleModeTakesOneRowAndListModeAsManyAsTheLimit) {
    m_editor->setNestingMode(RuleEditorNestingMode::Single);
    EXPECT_TRUE(m_editor->addRow(nullptr));
    EXPECT_FALSE(m_editor->addRow(nullptr));
    m_editor->setNestingMode(RuleEditorNestingMode::List);
    for (std::size_t row = 1; row < kRuleEditorRows; ++row)
        ASSERT_TRUE(m_editor->addRow(nullptr)) << row;
    EXPECT_FALSE(m_editor->addRow(nullptr));
    EXPECT_EQ(m_editor->numberOfRows(), static_cast<std::int64_t>(kRuleEditorRows));
}

TEST_F(RuleEditorRows, WhereNoLeafCanBeReachedNoRowIsAdded) {
    EXPECT_EQ(RuleEditor().delegate(), nullptr);
    const auto alone = std::make_shared<RuleEditor>();
    EXPECT_FALSE(alone->addRow(nullptr)) << "nobody knows a tree";
    m_rules->roots = {};
    EXPECT_FALSE(m_editor->addRow(nullptr)) << "the tree is empty";
    m_rules->roots = {ruleSeparator(), nullptr};
    EXPECT_FALSE(m_editor->addRow(nullptr)) << "nothing in it can be chosen";
    m_rules->roots = {ruleNode("Loop")};
    m_rules->roots[0]->children = {m_rules->roots[0]};
    EXPECT_FALSE(m_editor->addRow(nullptr)) << "it has no end";
    m_rules->roots[0]->children.clear();
    EXPECT_EQ(m_rules->changes, 0);
}

TEST_F(RuleEditorRows, ATreeAsDeepAsTheLimitIsStillAPathAndOneLevelMoreIsNot) {
    auto deepest = ruleNode("leaf");
    for (std::size_t level = 1; level < kRuleEditorColumns; ++level)
        deepest = ruleNode("level", {deepest});
    m_rules->roots = {deepest};
    EXPECT_TRUE(m_editor->addRow(nullptr));
    EXPECT_EQ(m_editor->criteriaForRow(0).size(), kRuleEditorColumns);
    m_rules->roots = {ruleNode("level", {deepest})};
    EXPECT_FALSE(m_editor->addRow(nullptr));
    EXPECT_THROW(m_editor->setCriteria(RuleEditor::Criteria(kRuleEditorColumns + 1), {}, 0),
                 std::length_error);
    EXPECT_THROW(m_editor->setCriteria({}, RuleEditor::DisplayValues(kRuleEditorColumns + 1), 0),
                 std::length_error);
    EXPECT_EQ(m_editor->criteriaForRow(0).size(), kRuleEditorColumns) << "nothing was changed";
}

TEST_F(RuleEditorRows, NoMoreChoicesAreOfferedThanTheLimit) {
    m_rules->roots.assign(static_cast<std::size_t>(kRuleEditorChoices) + 1, ruleNode("Many"));
    m_editor->addRow(nullptr);
    EXPECT_EQ(m_editor->choices({.row = 0, .column = 0}).choices.size(),
              static_cast<std::size_t>(kRuleEditorChoices));
    EXPECT_THROW(m_editor->choose({.row = 0, .column = 0}, kRuleEditorChoices), std::out_of_range);
}

TEST_F(RuleEditorRows, IndicesOutsideTheRowsThrowAndChangeNothing) {
    m_editor->addRow(nullptr);
    const auto heard = m_rules->changes;
    for (const std::int64_t row :
         {std::int64_t{-1}, std::int64_t{1}, std::numeric_limits<std::int64_t>::max(),
          std::numeric_limits<std::int64_t>::min()}) {
        EXPECT_THROW(m_editor->criteriaForRow(row), std::out_of_range) << row;
        EXPECT_THROW(m_editor->displayValuesForRow(row), std::out_of_range) << row;
        EXPECT_THROW(m_editor->setCriteria({}, {}, row), std::out_of_range) << row;
        EXPECT_THROW(m_editor->removeRowAtIndex(row), std::out_of_range) << row;
        EXPECT_THROW(m_editor->choices({.row = row, .column = 0}), std::out_of_range) << row;
        EXPECT_THROW(m_editor->choose({.row = row, .column = 0}, 0), std::out_of_range) << row;
        EXPECT_THROW(m_editor->insertRowAtIndex(row == 1 ? 2 : row), std::out_of_range) << row;
    }
    EXPECT_THROW(m_editor->choices({.row = 0, .column = 3}), std::out_of_range);
    EXPECT_THROW(m_editor->choices({.row = 0, .column = -1}), std::out_of_range);
    EXPECT_THROW(m_editor->choose({.row = 0, .column = 3}, 0), std::out_of_range);
    EXPECT_THROW(m_editor->choose({.row = 0, .column = 0}, 4), std::out_of_range);
    EXPECT_THROW(m_editor->choose({.row = 0, .column = 0}, -1), std::out_of_range);
    EXPECT_THROW(m_editor->choose({.row = 0, .column = 2}, 0), std::out_of_range) << "a leaf has no choices";
    EXPECT_EQ(m_rules->changes, heard);
    EXPECT_EQ(shown(*m_editor), "Speak > []");
}

TEST_F(RuleEditorRows, EveryChangeIsHeardOnceBeforeTheCallReturnsWithTheEditorAsItsObject) {
    int views = 0;
    const auto token = m_editor->observe([&] { ++views; });
    m_rules->onChange = [&] { EXPECT_EQ(views, m_rules->changes - 1) << "the delegate hears of it first"; };
    m_editor->addRow(nullptr);
    EXPECT_EQ(m_rules->changes, 1);
    EXPECT_EQ(m_rules->changed, m_editor);
    EXPECT_EQ(m_rules->notification, kRuleEditorRowsDidChangeNotification);
    m_editor->insertRowAtIndex(0);
    EXPECT_EQ(m_rules->changes, 2);
    m_editor->setCriteria({}, {}, 0);
    EXPECT_EQ(m_rules->changes, 3);
    m_editor->removeRowAtIndex(0);
    EXPECT_EQ(m_rules->changes, 4);
    m_editor->choose({.row = 0, .column = 0}, 3);
    EXPECT_EQ(m_rules->changes, 5);
    EXPECT_EQ(views, 5);
}

}  // namespace
}  // namespace vigil
