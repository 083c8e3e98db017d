#include <stdexcept>

#include <gtest/gtest.h>

#include "platform/RuleEditor.hpp"
#include "tests/support/FakeRules.hpp"

// A delegate that changes the editor while it is being asked or told.

namespace vigil {
namespace {

using test::FakeRules;
using test::ruleField;
using test::ruleNode;
using test::shown;

class RuleEditorChange : public testing::Test {
  protected:
    RuleEditorChange() {
        m_rules->roots = {ruleNode("A"), ruleNode("B"), ruleNode("C", {ruleField()})};
        m_editor->setDelegate(m_rules);
        m_editor->setNestingMode(RuleEditorNestingMode::List);
    }

    /// Rows A, B, … as they stand first.
    void addRows(std::initializer_list<std::int64_t> roots) {
        for (const std::int64_t root : roots) {
            m_editor->addRow(nullptr);
            m_editor->choose({.row = m_editor->numberOfRows() - 1, .column = 0}, root);
        }
        m_rules->changes = 0;
    }

    std::shared_ptr<FakeRules> m_rules = std::make_shared<FakeRules>();
    std::shared_ptr<RuleEditor> m_editor = std::make_shared<RuleEditor>();
};

TEST_F(RuleEditorChange, ARowAddedInsideAnAnswerStandsBesideTheOneThatIsBeingAdded) {
    m_rules->onAnswer = [](RuleEditor& editor) { editor.addRow(nullptr); };
    EXPECT_TRUE(m_editor->addRow(nullptr));
    EXPECT_EQ(shown(*m_editor), "A | A");
    EXPECT_EQ(m_rules->changes, 2);
}

TEST_F(RuleEditorChange, ARowIsInsertedBeforeItsNeighbourWhereverThatHasGoneMeanwhile) {
    addRows({0, 1});
    m_rules->onAnswer = [](RuleEditor& editor) {
        editor.removeRowAtIndex(0);
        editor.choose({.row = 0, .column = 0}, 2);
    };
    EXPECT_TRUE(m_editor->insertRowAtIndex(1));
    EXPECT_EQ(shown(*m_editor), "A | C > []");
    m_rules->onAnswer = [](RuleEditor& editor) { editor.removeRowAtIndex(0); };
    EXPECT_TRUE(m_editor->insertRowAtIndex(0));
    EXPECT_EQ(shown(*m_editor), "C > [] | A") << "one whose neighbour has gone comes last";
}

TEST_F(RuleEditorChange, YoungerRowsAroundTheNeighbourAreNotTakenForIt) {
    addRows({0, 1});
    EXPECT_TRUE(m_editor->insertRowAtIndex(0));
    EXPECT_TRUE(m_editor->choose({.row = 0, .column = 0}, 2));
    EXPECT_TRUE(m_editor->insertRowAtIndex(2)) << "before the B, below a row that is younger than it";
    EXPECT_EQ(shown(*m_editor), "C > [] | A | A | B");
    m_rules->onAnswer = [](RuleEditor& editor) {
        editor.insertRowAtIndex(0);
        editor.choose({.row = 0, .column = 0}, 1);
    };
    EXPECT_TRUE(m_editor->insertRowAtIndex(3));
    EXPECT_EQ(shown(*m_editor), "B | C > [] | A | A | A | B") << "though the B has moved down meanwhile";
    m_rules->onAnswer = [](RuleEditor& editor) { editor.removeRowAtIndex(5); };
    EXPECT_TRUE(m_editor->insertRowAtIndex(5));
    EXPECT_EQ(shown(*m_editor), "B | C > [] | A | A | A | A") << "and last where the B has gone";
}

TEST_F(RuleEditorChange, AChoiceInARowThatChangedMeanwhileIsDropped) {
    addRows({0, 1});
    m_rules->onAnswer = [](RuleEditor& editor) { editor.choose({.row = 0, .column = 0}, 1); };
    EXPECT_FALSE(m_editor->choose({.row = 0, .column = 0}, 2));
    EXPECT_EQ(shown(*m_editor), "B | B") << "the later change stands";
    m_rules->onAnswer = [](RuleEditor& editor) { editor.removeRowAtIndex(0); };
    EXPECT_FALSE(m_editor->choose({.row = 0, .column = 0}, 2));
    EXPECT_EQ(shown(*m_editor), "B") << "and never falls upon the row that has moved up";
    EXPECT_EQ(m_rules->changes, 2) << "what is dropped is not told";
}

TEST_F(RuleEditorChange, ChoicesAreOfTheRowAsItWasWhenTheyWereAskedFor) {
    addRows({2});
    const auto path = m_editor->criteriaForRow(0);
    m_rules->onAnswer = [](RuleEditor& editor) { editor.removeRowAtIndex(0); };
    const auto offered = m_editor->choices({.row = 0, .column = 0});
    EXPECT_EQ(offered.chosen, 2u);
    EXPECT_EQ(offered.choices[2].criterion, path[0]);
}

TEST_F(RuleEditorChange, AReloadLeavesARowThatChangedMeanwhile) {
    addRows({0});
    m_editor->setCriteria({m_rules->roots[2]}, {}, 0);
    m_rules->onAnswer = [](RuleEditor& editor) { editor.choose({.row = 0, .column = 0}, 1); };
    m_editor->reloadCriteria();
    EXPECT_EQ(shown(*m_editor), "B");
}

TEST_F(RuleEditorChange, ALimitThatIsReachedInsideAnAnswerHolds) {
    m_editor->setNestingMode(RuleEditorNestingMode::Single);
    m_rules->onAnswer = [](RuleEditor& editor) { editor.addRow(nullptr); };
    EXPECT_FALSE(m_editor->addRow(nullptr));
    EXPECT_EQ(shown(*m_editor), "A");
}

TEST_F(RuleEditorChange, ADelegateThatAddsARowForEachItHearsOfEndsAtTheLimit) {
    m_rules->onChange = [&] { m_editor->addRow(nullptr); };
    m_editor->addRow(nullptr);
    EXPECT_EQ(m_editor->numberOfRows(), static_cast<std::int64_t>(kRuleEditorRows));
    EXPECT_EQ(m_rules->changes, static_cast<int>(kRuleEditorRows));
}

TEST_F(RuleEditorChange, WhatADelegateThrowsFromAnAnswerLeavesTheRowsAsTheyWere) {
    addRows({0});
    m_rules->onAnswer = [](RuleEditor&) { throw std::runtime_error("no answer"); };
    EXPECT_THROW(m_editor->addRow(nullptr), std::runtime_error);
    m_rules->onAnswer = [](RuleEditor&) { throw std::runtime_error("no answer"); };
    EXPECT_THROW(m_editor->choose({.row = 0, .column = 0}, 1), std::runtime_error);
    EXPECT_EQ(shown(*m_editor), "A");
}

TEST_F(RuleEditorChange, WhatADelegateThrowsWhenToldReachesTheCallerAndTheChangeStands) {
    int views = 0;
    const auto token = m_editor->observe([&] { ++views; });
    m_rules->onChange = [] { throw std::runtime_error("not now"); };
    EXPECT_THROW(m_editor->addRow(nullptr), std::runtime_error);
    EXPECT_EQ(shown(*m_editor), "A");
    EXPECT_EQ(views, 1) << "views show it";
}

TEST_F(RuleEditorChange, EditorAndDelegateMayGoInsideAnAnswer) {
    std::weak_ptr<RuleEditor> editor = m_editor;
    std::weak_ptr<FakeRules> rules = m_rules;
    RuleEditor* const asked = m_editor.get();
    m_rules->onAnswer = [this](RuleEditor&) {
        m_editor.reset();
        m_rules.reset();
    };
    EXPECT_TRUE(asked->addRow(nullptr)) << "the call ends as if they stood";
    EXPECT_TRUE(editor.expired());
    EXPECT_TRUE(rules.expired());
}

}  // namespace
}  // namespace vigil
