#include <array>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/RuleEditor.hpp"
#include "tests/support/ConditionGenerator.hpp"
#include "tests/support/FakeRules.hpp"

// Random edits on the editor and on the simplest list that could be meant, which then have to be alike.

namespace vigil {
namespace {

using test::FakeRules;
using test::ruleField;
using test::ruleNode;
using test::RuleNodes;
using test::ruleSeparator;
using test::shown;

/// A row as texts: names, and for a field what is typed in it.
struct NaiveRow {
    std::vector<std::string> names;
    std::string typed;

    std::string text() const {
        std::string columns;
        for (const std::string& name : names)
            columns += (columns.empty() ? "" : " > ") + (name.empty() ? "[" + typed + "]" : name);
        return columns;
    }
};

/// Every path from a root to a leaf that can be chosen, written down by hand; "" is a field.
const std::vector<std::vector<std::vector<std::string>>>& pathsByRoot() {
    static const std::vector<std::vector<std::vector<std::string>>> paths = {
        {{"Speak", ""}}, {{"Wait", "Yes", ""}, {"Wait", "No"}}, {}, {{"Stop"}}};
    return paths;
}

RuleNodes tree() {
    return {ruleNode("Speak", {ruleField()}),
            ruleNode("Wait", {ruleNode("Yes", {ruleField()}), ruleNode("No")}), ruleSeparator(),
            ruleNode("Stop")};
}

class RandomEdits : public testing::TestWithParam<unsigned> {
  public:
    RandomEdits() {
        m_rules->roots = tree();
        m_editor->setDelegate(m_rules);
        m_editor->setNestingMode(RuleEditorNestingMode::List);
        m_editor->setCanRemoveAllRows(false);
    }

    std::int64_t below(std::int64_t end) {
        return std::uniform_int_distribution<std::int64_t>(0, end - 1)(m_random);
    }
    std::int64_t size() const { return static_cast<std::int64_t>(m_rows.size()); }
    NaiveRow& at(std::int64_t row) { return m_rows[static_cast<std::size_t>(row)]; }

    void insert() {
        const std::int64_t place = below(size() + 1);
        EXPECT_TRUE(m_editor->insertRowAtIndex(place));
        m_rows.insert(m_rows.begin() + place, NaiveRow{pathsByRoot()[0][0], ""});
    }

    void remove() {
        if (m_rows.empty()) return;
        const std::int64_t row = below(size());
        EXPECT_EQ(m_editor->removeRowAtIndex(row), size() > 1);
        if (size() > 1) m_rows.erase(m_rows.begin() + row);
    }

    void chooseRoot() {
        if (m_rows.empty()) return;
        const std::int64_t row = below(size());
        const std::int64_t root = below(4);
        const auto& paths = pathsByRoot()[static_cast<std::size_t>(root)];
        const bool changes = !paths.empty() && paths[0][0] != at(row).names[0];
        EXPECT_EQ(m_editor->choose({.row = row, .column = 0}, root), changes);
        if (changes) at(row) = {paths[0], ""};
    }

    void chooseAnswer() {
        if (m_rows.empty()) return;
        const std::int64_t row = below(size());
        if (at(row).names[0] != "Wait") return;
        const std::int64_t answer = below(2);
        const auto& path = pathsByRoot()[1][static_cast<std::size_t>(answer)];
        const bool changes = path[1] != at(row).names[1];
        EXPECT_EQ(m_editor->choose({.row = row, .column = 1}, answer), changes);
        if (changes) at(row) = {path, ""};
    }

    void type() {
        if (m_rows.empty()) return;
        const std::int64_t row = below(size());
        const std::string text = std::to_string(below(1000));
        for (const DisplayValue& value : m_editor->displayValuesForRow(row))
            if (const auto* field = std::get_if<std::shared_ptr<TextField>>(&value))
                (*field)->setStringValue(text);
        at(row).typed = text;
    }

    /// Puts in what an archive would bring: equal nodes that are not the tree's, and a field of their own.
    void restore() {
        if (m_rows.empty()) return;
        const std::int64_t row = below(size());
        const auto fresh = tree()[1];
        const std::string text = std::to_string(below(1000));
        m_editor->setCriteria({fresh, fresh->children[0], fresh->children[0]->children[0]},
                              {fresh->name, fresh->children[0]->name, std::make_shared<TextField>(text)},
                              row);
        at(row) = {pathsByRoot()[1][0], text};
    }

    void lookOn() {
        m_editor->reloadCriteria();
        if (m_rows.empty()) return;
        const std::int64_t row = below(size());
        const auto chosen = m_editor->choices({.row = row, .column = 0}).chosen;
        ASSERT_TRUE(chosen);
        EXPECT_EQ(pathsByRoot()[*chosen].at(0)[0], at(row).names[0]);
    }

    std::string naive() const {
        std::string rows;
        for (const NaiveRow& row : m_rows)
            rows += (&row == m_rows.data() ? "" : " | ") + row.text();
        return rows;
    }

    std::mt19937 m_random{GetParam()};
    std::shared_ptr<FakeRules> m_rules = std::make_shared<FakeRules>();
    std::shared_ptr<RuleEditor> m_editor = std::make_shared<RuleEditor>();
    std::vector<NaiveRow> m_rows;
};

TEST_P(RandomEdits, LeaveTheEditorAsTheyLeaveAListOfTexts) {
    using Step = void (RandomEdits::*)();
    constexpr std::array<Step, 7> kSteps = {
        &RandomEdits::insert, &RandomEdits::remove,  &RandomEdits::chooseRoot, &RandomEdits::chooseAnswer,
        &RandomEdits::type,   &RandomEdits::restore, &RandomEdits::lookOn};
    for (int i = 0; i < 400 * test::longFactor(); ++i) {
        const auto step = static_cast<std::size_t>(below(kSteps.size()));
        (this->*kSteps[step])();
        ASSERT_EQ(shown(*m_editor), naive()) << "after edit " << i << ", a step of kind " << step;
    }
    EXPECT_GT(m_rules->changes, 100) << "the edits did change something";
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomEdits, testing::Range(1u, 26u));

}  // namespace
}  // namespace vigil
