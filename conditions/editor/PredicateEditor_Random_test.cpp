#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "conditions/editor/PredicateEditor.hpp"
#include "tests/support/ConditionGenerator.hpp"
#include "tests/support/EditorBench.hpp"

namespace vigil {
namespace {

constexpr int kConditions = 3000;
constexpr int kSequences = 150;
constexpr int kEdits = 60;

/// Offers some of the keys that the generator uses, "windChill" as a text and "b" as a date.
PredicateEditor::Templates someTemplates() {
    using Bench = EditorBench;
    using Op = PredicateOperatorType;
    return {Bench::Template::initWithCompoundTypes({CompoundPredicateType::And, CompoundPredicateType::Or}),
            Bench::comparing(AttributeType::Double, {Op::EqualTo, Op::LessThan, Op::GreaterThan},
                             {{"a.unitValue", "A"}, {"k_9.unitValue", "K"}}),
            Bench::comparing(AttributeType::String, {Op::EqualTo, Op::NotEqualTo},
                             {{"windChill.stringValue", "W"}}),
            Bench::comparing(AttributeType::Date, {Op::EqualTo, Op::NotEqualTo}, {{"b.value", "B"}})};
}

/// What the rows that a view sees say, put together from their texts alone.
std::string saidByRows(const std::vector<PredicateEditorRow>& rows, std::size_t& next, bool& isCompound) {
    const PredicateEditorRow& row = rows[next++];
    if (!row.isGroup) {
        isCompound = false;
        return row.condition;
    }
    std::vector<std::pair<std::string, bool>> parts;
    while (next < rows.size() && rows[next].depth > row.depth) {
        bool compound = false;
        std::string part = saidByRows(rows, next, compound);
        if (!part.empty()) parts.emplace_back(std::move(part), compound);
    }
    isCompound = parts.size() == 1 ? parts[0].second : !parts.empty();
    if (parts.size() <= 1) return parts.empty() ? "" : parts[0].first;
    std::string text;
    for (const auto& [part, compound] : parts) {
        if (!text.empty()) text += row.popUps[0].shown == "all of these" ? " AND " : " OR ";
        text += compound ? "(" + part + ")" : part;
    }
    return text;
}

std::string saidByRows(const PredicateEditor& editor) {
    const auto rows = editor.rows();
    std::size_t next = 0;
    bool compound = false;
    std::string text = saidByRows(rows, next, compound);
    EXPECT_EQ(next, rows.size());
    return text;
}

std::string saidByValue(const PredicateEditor& editor) {
    return editor.objectValue() ? editor.objectValue()->printed() : "";
}

TEST(RandomConditions, ComeBackUnchanged) {
    test::ConditionGenerator made(1);
    const auto editor = std::make_shared<PredicateEditor>();
    int foreign = 0;
    for (int i = 0; i < kConditions * test::longFactor(); ++i) {
        if (i % 100 == 0)
            editor->setRowTemplates(i % 200 == 0 ? someTemplates() : PredicateEditor::Templates{});
        const auto condition = EditorBench::parsed(made.text(12));
        ASSERT_TRUE(condition);
        editor->setObjectValue(condition);
        ASSERT_EQ(saidByRows(*editor), condition->printed());
        // An edit makes the condition anew out of the rows, and taking it back has to give the old one.
        const std::size_t rows = editor->numberOfRows();
        for (const auto& row : editor->rows())
            foreign += !row.isGroup && !row.popUps[0].chosen ? 1 : 0;
        if (editor->addRow(0, 0)) {
            ASSERT_NE(saidByValue(*editor), condition->printed());
            ASSERT_TRUE(editor->removeRow(1));
        }
        ASSERT_EQ(saidByValue(*editor), condition->printed());
        ASSERT_EQ(editor->numberOfRows(), rows);
    }
    EXPECT_GT(foreign, kConditions) << "hardly a row showed what is not offered";
}

class RandomEdits {
  public:
    explicit RandomEdits(std::uint32_t seed) : m_made(seed) {
        editor->setRowTemplates(someTemplates());
        if (m_made.below(3) > 0) editor->setObjectValue(EditorBench::parsed(m_made.text(8)));
    }

    void editOnce() {
        const auto rows = editor->rows();
        const auto row = static_cast<std::size_t>(m_made.below(static_cast<int>(rows.size())));
        const PredicateEditorRow& chosen = rows[row];
        switch (m_made.below(8)) {
            case 0:
            case 1:
                (void)editor->addRow(chosen.isGroup ? row : chosen.group,
                                     chosen.isGroup ? 0 : chosen.position);
                break;
            case 2:
                (void)editor->addGroup(chosen.group,
                                       row == 0 ? 0 : chosen.position + (chosen.depth > 0 ? 1 : 0));
                break;
            case 3:
                (void)editor->removeRow(row);
                break;
            case 4:
            case 5:
                chooseOnce(row, chosen);
                break;
            case 6:
                (void)editor->setValueText(row, m_made.bytes(12));
                break;
            default:
                (void)editor->setValueText(row, m_made.below(2) == 0 ? "12.5" : "2024-01-01");
        }
    }

    std::shared_ptr<PredicateEditor> editor = std::make_shared<PredicateEditor>();

  private:
    void chooseOnce(std::size_t row, const PredicateEditorRow& chosen) {
        const auto popUp = static_cast<std::size_t>(m_made.below(static_cast<int>(chosen.popUps.size())));
        const auto offered = static_cast<int>(editor->choices(row, popUp).size());
        ASSERT_GT(offered, 0);
        EXPECT_TRUE(editor->choose(row, popUp, static_cast<std::size_t>(m_made.below(offered))));
    }

    test::ConditionGenerator m_made;
};

TEST(RandomEditing, AlwaysLeavesAConditionThatReadsBackAndThatTheRowsSay) {
    std::size_t most = 0;
    for (int sequence = 0; sequence < kSequences * test::longFactor(); ++sequence) {
        RandomEdits edits(static_cast<std::uint32_t>(sequence));
        std::string lastHeard = saidByValue(*edits.editor);
        const auto monitor = edits.editor->observeEdits([&] { lastHeard = saidByValue(*edits.editor); });
        for (int i = 0; i < kEdits; ++i) {
            edits.editOnce();
            const std::string says = saidByValue(*edits.editor);
            ASSERT_EQ(says, saidByRows(*edits.editor));
            ASSERT_EQ(says, lastHeard) << "an edit was not told";
            if (says.empty()) continue;
            const auto read = ConditionPredicate::predicateWithFormat(says);
            ASSERT_TRUE(read) << says;
            ASSERT_EQ(read.value()->printed(), says);
            most = std::max(most, edits.editor->numberOfRows());
        }
    }
    EXPECT_GT(most, 15u) << "the rows never grew";
}

}  // namespace
}  // namespace vigil
