#include <gtest/gtest.h>

#include "platform/RuleEditor.hpp"
#include "tests/support/FakeRules.hpp"

namespace vigil {
namespace {

using test::FakeRules;
using test::ruleField;
using test::ruleNode;
using test::ruleSeparator;
using test::shown;

class RuleEditorChoosing : public testing::Test {
  protected:
    RuleEditorChoosing() {
        m_rules->roots = freshRoots();
        m_editor->setDelegate(m_rules);
        m_editor->setNestingMode(RuleEditorNestingMode::List);
    }

    static test::RuleNodes freshRoots() {
        return {ruleNode("Speak", {ruleField()}),
                ruleNode("Wait", {ruleNode("Yes", {ruleField()}), ruleNode("No")}), ruleSeparator(),
                ruleNode("Stop")};
    }

    /// A row as an archive would bring it: nodes of a tree that is not the delegate's.
    void addForeignRow(std::size_t root) {
        m_foreign = freshRoots()[root];
        m_typed = std::make_shared<TextField>("typed");
        m_editor->addRow(nullptr);
        m_editor->setCriteria({m_foreign, m_foreign->children[0]}, {m_foreign->name, m_typed},
                              m_editor->numberOfRows() - 1);
    }

    std::shared_ptr<FakeRules> m_rules = std::make_shared<FakeRules>();
    std::shared_ptr<RuleEditor> m_editor = std::make_shared<RuleEditor>();
    std::shared_ptr<test::RuleNode> m_foreign;
    std::shared_ptr<TextField> m_typed;
};

TEST_F(RuleEditorChoosing, AnotherNodeGetsDefaultChoicesBehindItAndKeepsWhatStandsBefore) {
    m_editor->addRow(nullptr);
    EXPECT_TRUE(m_editor->choose({.row = 0, .column = 0}, 1));
    EXPECT_EQ(shown(*m_editor), "Wait > Yes > []");
    EXPECT_TRUE(m_editor->choose({.row = 0, .column = 1}, 1));
    EXPECT_EQ(shown(*m_editor), "Wait > No");
    EXPECT_EQ(m_editor->criteriaForRow(0)[0], m_rules->roots[1]);
    EXPECT_TRUE(m_editor->choose({.row = 0, .column = 0}, 3));
    EXPECT_EQ(shown(*m_editor), "Stop");
}

TEST_F(RuleEditorChoosing, WhatIsChosenAlreadyASeparatorAndAWayThatLeadsNowhereChangeNothing) {
    m_editor->addRow(nullptr);
    m_rules->roots.push_back(ruleNode("Nowhere", {ruleSeparator()}));
    const auto control = m_editor->displayValuesForRow(0)[1];
    const int heard = m_rules->changes;
    EXPECT_FALSE(m_editor->choose({.row = 0, .column = 0}, 0));
    EXPECT_FALSE(m_editor->choose({.row = 0, .column = 0}, 2));
    EXPECT_FALSE(m_editor->choose({.row = 0, .column = 0}, 4));
    EXPECT_EQ(m_rules->changes, heard);
    EXPECT_EQ(m_editor->displayValuesForRow(0)[1], control);
}

TEST_F(RuleEditorChoosing, AForeignNodeIsFoundByItsNameAndStaysWithItsControl) {
    addForeignRow(0);
    const auto offered = m_editor->choices({.row = 0, .column = 0});
    ASSERT_EQ(offered.choices.size(), 4u);
    EXPECT_EQ(offered.chosen, 0u);
    EXPECT_EQ(offered.choices[0].criterion, m_foreign) << "not the node of the same name in the tree";
    EXPECT_EQ(offered.choices[1].criterion, m_rules->roots[1]);
    EXPECT_EQ(stringValue(offered.choices[1].displayValue), "Wait");
    EXPECT_FALSE(m_editor->choose({.row = 0, .column = 0}, 0)) << "choosing it again changes nothing";
    EXPECT_EQ(m_editor->criteriaForRow(0)[0], m_foreign);
}

TEST_F(RuleEditorChoosing, ANamelessNodeIsFoundByIdentityAndOffersItsLiveControl) {
    addForeignRow(0);
    const auto offered = m_editor->choices({.row = 0, .column = 1});
    ASSERT_EQ(offered.choices.size(), 1u);
    EXPECT_EQ(offered.chosen, 0u);
    EXPECT_EQ(offered.choices[0].displayValue, DisplayValue{m_typed}) << "not a fresh field";
}

TEST_F(RuleEditorChoosing, IdentityCountsBeforeAnEqualName) {
    m_rules->roots = {ruleNode("Same", {ruleNode("first")}), ruleNode("Same", {ruleNode("second")})};
    m_editor->addRow(nullptr);
    m_editor->setCriteria({m_rules->roots[1], m_rules->roots[1]->children[0]},
                          {std::string("Same"), std::string("second")}, 0);
    EXPECT_EQ(m_editor->choices({.row = 0, .column = 0}).chosen, 1u);
    EXPECT_TRUE(m_editor->choose({.row = 0, .column = 0}, 0));
    EXPECT_EQ(shown(*m_editor), "Same > first");
}

TEST_F(RuleEditorChoosing, ANodeThatIsNotOfferedIsShownAsItIsAndCanBeReplaced) {
    addForeignRow(0);
    m_foreign->name = "Mail";
    EXPECT_EQ(m_editor->choices({.row = 0, .column = 0}).chosen, std::nullopt);
    EXPECT_EQ(m_editor->criteriaForRow(0)[0], m_foreign);
    EXPECT_TRUE(m_editor->choose({.row = 0, .column = 0}, 0));
    EXPECT_EQ(shown(*m_editor), "Speak > []");
}

TEST_F(RuleEditorChoosing, ARowThatEndsTooEarlyOffersItsNextColumnAndIsCompletedByAReload) {
    m_editor->addRow(nullptr);
    m_editor->setCriteria({m_rules->roots[1]}, {}, 0);
    const auto offered = m_editor->choices({.row = 0, .column = 1});
    EXPECT_EQ(offered.choices.size(), 2u);
    EXPECT_EQ(offered.chosen, std::nullopt);
    const int heard = m_rules->changes;
    m_editor->reloadCriteria();
    EXPECT_EQ(m_rules->changes, heard + 1);
    EXPECT_EQ(shown(*m_editor), "nothing > Yes > []") << "what was set stays, also where it shows nothing";
    int views = 0;
    const auto token = m_editor->observe([&] { ++views; });
    m_editor->reloadCriteria();
    EXPECT_EQ(m_rules->changes, heard + 1) << "there was nothing left to complete";
    EXPECT_EQ(views, 1) << "views ask for the choices all the same";
    m_editor->setCriteria({m_rules->roots[1]}, {}, 0);
    EXPECT_TRUE(m_editor->choose({.row = 0, .column = 1}, 1));
    EXPECT_EQ(shown(*m_editor), "nothing > No");
}

TEST_F(RuleEditorChoosing, WithoutADelegateThereIsNothingToChoose) {
    addForeignRow(0);
    m_rules.reset();
    EXPECT_TRUE(m_editor->choices({.row = 0, .column = 0}).choices.empty());
    EXPECT_THROW(m_editor->choose({.row = 0, .column = 0}, 0), std::out_of_range);
    EXPECT_FALSE(m_editor->addRow(nullptr));
    m_editor->reloadCriteria();
    EXPECT_TRUE(m_editor->removeRowAtIndex(0)) << "rows can be taken away";
}

}  // namespace
}  // namespace vigil
