#include "conditions/ConditionNode.hpp"

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "conditions/Limits.hpp"
#include "conditions/Printer.hpp"

namespace vigil {
namespace {

ConditionNode leaf(double literal) {
    return ConditionNode(Comparison{"a", ComparisonMember::UnitValue, ComparisonOperator::Less, literal});
}

TEST(ConditionNode, OfOnePartIsThatPart) {
    EXPECT_EQ(ConditionNode::compound(Connective::And, {leaf(1)}), leaf(1));
    const auto group = ConditionNode::compound(Connective::Or, {leaf(1), leaf(2)});
    EXPECT_EQ(ConditionNode::compound(Connective::And, {group}), group);
}

TEST(ConditionNode, OfNoPartIsAMistake) {
    EXPECT_THROW(ConditionNode::compound(Connective::And, {}), std::invalid_argument);
}

TEST(ConditionNode, CountsItsDepth) {
    EXPECT_EQ(leaf(1).depth(), 0U);
    const auto group = ConditionNode::compound(Connective::Or, {leaf(1), leaf(2)});
    EXPECT_EQ(group.depth(), 1U);
    EXPECT_EQ(ConditionNode::compound(Connective::And, {leaf(3), group}).depth(), 2U);
}

TEST(ConditionNode, NestsOnlyAsDeepAsATextMay) {
    ConditionNode tree = leaf(0);
    for (std::size_t i = 0; i <= kMaxParenthesisDepth; ++i)
        tree = ConditionNode::compound(Connective::And, {leaf(1), tree});
    EXPECT_EQ(tree.depth(), kMaxParenthesisDepth + 1);
    EXPECT_THROW(ConditionNode::compound(Connective::And, {leaf(1), tree}), std::length_error);
    EXPECT_EQ(ConditionNode::compound(Connective::And, {tree}), tree) << "one part alone does not nest";
}

TEST(ConditionNode, OfAComparisonHasNoParts) {
    EXPECT_TRUE(leaf(1).parts().empty());
    EXPECT_FALSE(leaf(1).isCompound());
    EXPECT_EQ(leaf(1).comparison()->key, "a");
    EXPECT_EQ(ConditionNode::compound(Connective::Or, {leaf(1), leaf(2)}).comparison(), nullptr);
}

TEST(ConditionPrinter, QuotesATextAsALiteral) {
    EXPECT_EQ(quotedText("a\"b\\c\n\r\t'\x01"), "\"a\\\"b\\\\c\\n\\r\\t'\x01\"");
    EXPECT_EQ(quotedText(""), "\"\"");
}

}  // namespace
}  // namespace vigil
