// Which nesting is accepted, at the exact limits: a text of at most 256 levels of parentheses whose printed
// form has at most 256 levels too. Whatever is accepted prints a text that is accepted and prints the same;
// whatever is refused is told why.

#include <algorithm>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "conditions/ConditionPredicate.hpp"
#include "conditions/Limits.hpp"

namespace vigil {
namespace {

// The deepest nesting of parentheses, by counting them.
std::size_t levelsOf(const std::string& text) {
    std::size_t open = 0;
    std::size_t deepest = 0;
    for (const char c : text) {
        if (c == '(') deepest = std::max(deepest, ++open);
        if (c == ')') --open;
    }
    return deepest;
}

// A text that grows from the inside out, and how deep its printed form has to nest: counted while it grows,
// without a tree and without a printer.
struct Growing {
    std::string text = "a.unitValue < 1";
    bool compound = false;
    std::size_t printedLevels = 0;

    void join() {
        printedLevels = compound ? printedLevels + 1 : 0;
        compound = true;
    }
    void wrap(unsigned how) {
        switch (how % 6) {
            case 0:  // vanishes
                text = "(" + text + ")";
                return;
            case 1:
                text = "b.unitValue < 1 OR (" + text + ")";
                return join();
            case 2:
                text = "(" + text + ") AND b.unitValue < 1";
                return join();
            case 3:  // the AND has no parentheses here but prints with some
                text = "b.unitValue < 1 OR (" + text + ") AND c.unitValue < 1";
                join();
                return join();
            case 4:
                text = "b.unitValue < 1 AND (" + text + ") OR c.unitValue < 1 AND d.unitValue < 1";
                join();
                return join();
            default:  // a part that vanishes beside one that stays
                text = "((b.unitValue < 1)) OR ((" + text + "))";
                return join();
        }
    }
};

void expectTheLaw(const Growing& grown) {
    const auto read = ConditionPredicate::predicateWithFormat(grown.text);
    const bool fits =
        levelsOf(grown.text) <= kMaxParenthesisDepth && grown.printedLevels <= kMaxParenthesisDepth;
    ASSERT_EQ(static_cast<bool>(read), fits)
        << levelsOf(grown.text) << " levels, printed " << grown.printedLevels;
    if (!read) {
        EXPECT_EQ(read.error().problem, SyntaxProblem::TooDeep);
        EXPECT_NE(read.error().message().find("at most 256 levels of parentheses"), std::string::npos);
        EXPECT_LT(read.error().offset, grown.text.size());
        EXPECT_GT(read.error().length, 0U);
        EXPECT_LE(read.error().length, grown.text.size() - read.error().offset);
        return;
    }
    const std::string& printed = read.value()->printed();
    EXPECT_EQ(levelsOf(printed), grown.printedLevels);
    const auto again = ConditionPredicate::predicateWithFormat(printed);
    ASSERT_TRUE(again) << again.error().message();
    EXPECT_TRUE(again.value()->isEqual(read.value().get()));
    EXPECT_EQ(again.value()->printed(), printed);
}

// Both limits exactly, and one above each, in every way of getting there that the generator has.
TEST(DepthLaw, HoldsOnBothSidesOfTheLimits) {
    std::mt19937 engine(1);
    const auto random = [&engine] { return static_cast<unsigned>(engine()); };
    int deepestPrinted = 0;
    int printedOneMore = 0;
    int deepestText = 0;
    int textOneMore = 0;
    for (int round = 0; round < 200; ++round) {
        const unsigned favourite = random() % 6;
        Growing grown;
        while (levelsOf(grown.text) < 260 && grown.printedLevels < 260) {
            grown.wrap(random() % 3 == 0 ? random() : favourite);
            if (levelsOf(grown.text) < 254 && grown.printedLevels < 254) continue;
            ASSERT_NO_FATAL_FAILURE(expectTheLaw(grown)) << "round " << round;
            deepestPrinted += grown.printedLevels == 256 && levelsOf(grown.text) < 256;
            printedOneMore += grown.printedLevels == 257 && levelsOf(grown.text) <= 256;
            deepestText += levelsOf(grown.text) == 256 && grown.printedLevels < 256;
            textOneMore += levelsOf(grown.text) == 257 && grown.printedLevels <= 256;
        }
    }
    EXPECT_GT(deepestPrinted, 10);
    EXPECT_GT(printedOneMore, 10);
    EXPECT_GT(deepestText, 10);
    EXPECT_GT(textOneMore, 10);
}

// The smallest step over the limit: one level of text puts one level too many into the printed form.
TEST(DepthLaw, RefusesOneLevelTooManyOfThePrintedFormAlone) {
    Growing grown;
    for (int i = 0; i < 128; ++i)
        grown.wrap(3);
    grown.wrap(1);
    ASSERT_EQ(grown.printedLevels, 256U);
    ASSERT_EQ(levelsOf(grown.text), 129U);
    const auto deepest = ConditionPredicate::predicateWithFormat(grown.text);
    ASSERT_TRUE(deepest) << deepest.error().message();
    EXPECT_EQ(levelsOf(deepest.value()->printed()), 256U);

    grown.wrap(1);
    ASSERT_EQ(grown.printedLevels, 257U);
    const auto tooDeep = ConditionPredicate::predicateWithFormat(grown.text);
    ASSERT_FALSE(tooDeep);
    EXPECT_EQ(
        tooDeep.error().message(),
        "expected a condition whose printed form has at most 256 levels of parentheses but found one with "
        "more");
    EXPECT_EQ(tooDeep.error().offset, 0U);
    EXPECT_EQ(tooDeep.error().length, grown.text.size());
}

// A line break prints as two bytes; the texts differ in one plain character.
TEST(LengthLaw, AllowsThePrintedFormOfExactlyTheLimitAndRefusesOneByteMore) {
    const std::string head = "a.stringValue == \"";
    const std::size_t room = kMaxTextBytes - head.size() - 1;
    const std::string most = head + std::string(room % 2, 'x') + std::string(room / 2, '\n') + "\"";
    const auto longest = ConditionPredicate::predicateWithFormat(most);
    ASSERT_TRUE(longest) << longest.error().message();
    EXPECT_EQ(longest.value()->printed().size(), kMaxTextBytes);
    const auto again = ConditionPredicate::predicateWithFormat(longest.value()->printed());
    ASSERT_TRUE(again) << again.error().message();
    EXPECT_EQ(again.value()->printed(), longest.value()->printed());

    const auto tooLong = ConditionPredicate::predicateWithFormat(most.substr(0, most.size() - 1) + "x\"");
    ASSERT_FALSE(tooLong);
    EXPECT_EQ(tooLong.error().problem, SyntaxProblem::TooLong);
    EXPECT_EQ(
        tooLong.error().message(),
        "expected a condition whose printed form has at most 1048576 bytes but found one of 1048577 bytes");
}

}  // namespace
}  // namespace vigil
