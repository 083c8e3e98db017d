#include <string>

#include <gtest/gtest.h>

#include "conditions/Limits.hpp"
#include "conditions/editor/PredicateEditor.hpp"
#include "tests/support/EditorBench.hpp"

namespace vigil {
namespace {

class EditorLimits : public testing::Test, public EditorBench {};

/// A balanced tree of pairs, the condition with the most rows for its bytes.
std::string pairs(int levels) {
    if (levels == 0) return "a.unitValue < 1";
    const std::string half = levels == 1 ? pairs(0) : "(" + pairs(levels - 1) + ")";
    return half + " OR " + half;
}

TEST_F(EditorLimits, TheConditionWithTheMostRowsIsShownAndComesBack) {
    const std::string text = pairs(15);
    ASSERT_LE(text.size(), kMaxTextBytes);
    ASSERT_GT(text.size() * 2, kMaxTextBytes * 5 / 4);
    show(text);
    EXPECT_EQ(editor->numberOfRows(), 65535u);
    ASSERT_TRUE(editor->addRow(0, 0));
    ASSERT_TRUE(editor->removeRow(1));
    EXPECT_TRUE(says() == text);
}

TEST_F(EditorLimits, TheDeepestConditionIsShownAndComesBack) {
    std::string text = "a.unitValue < 1";
    for (std::size_t i = 0; i <= kMaxParenthesisDepth; ++i)
        text = (i == 0 ? text : "(" + text + ")") + (i % 2 == 0 ? " OR " : " AND ") + "a.unitValue < 1";
    show(text);
    EXPECT_EQ(editor->rows().back().depth, 1u);
    ASSERT_TRUE(editor->addRow(0, 0));
    ASSERT_TRUE(editor->removeRow(1));
    EXPECT_EQ(says(), text);
}

TEST_F(EditorLimits, GroupsStandNoDeeperThanAConditionNests) {
    for (std::size_t i = 0; i < kPredicateEditorDepth; ++i)
        ASSERT_TRUE(editor->addGroup(i, 0)) << i;
    const auto refused = editor->addGroup(kPredicateEditorDepth, 0);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().message, "groups can stand at most 256 levels deep");
    EXPECT_EQ(editor->numberOfRows(), kPredicateEditorDepth + 1);
    // With two parts in each group, all of them count, and the result still reads back.
    for (std::size_t i = kPredicateEditorDepth + 1; i-- > 0;) {
        ASSERT_TRUE(editor->addRow(i, 0));
        ASSERT_TRUE(editor->addRow(i, 0));
    }
    EXPECT_TRUE(ConditionPredicate::predicateWithFormat(says()));
    EXPECT_EQ(editor->objectValue()->tree().depth(), kPredicateEditorDepth + 1);
}

TEST_F(EditorLimits, AValueThatMakesTheConditionTooLongIsRefused) {
    show("sky.stringValue == \"\"");
    const std::size_t frame = says().size();
    EXPECT_TRUE(editor->setValue(1, std::string(kMaxTextBytes - frame, 'x')));
    EXPECT_EQ(edits, 1);
    const auto before = editor->objectValue();
    EXPECT_FALSE(editor->setValue(1, std::string(kMaxTextBytes - frame + 1, 'x')));
    EXPECT_FALSE(editor->addRow(0, 0)) << "no byte is left for another comparison";
    EXPECT_EQ(editor->objectValue(), before);
    EXPECT_EQ(edits, 1);
}

}  // namespace
}  // namespace vigil
