#include "conditions/Limits.hpp"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "conditions/ConditionPredicate.hpp"

namespace vigil {
namespace {

std::string repeated(const std::string& text, std::size_t count) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i)
        all += text;
    return all;
}

auto read(const std::string& text) {
    return ConditionPredicate::predicateWithFormat(text);
}

// "a < 1 OR (a < 1 OR (… a < 1))" with so many parentheses inside one another.
std::string nested(std::size_t depth) {
    return repeated("a.unitValue < 1 OR (", depth) + "a.unitValue < 1 OR b.unitValue < 1" +
           repeated(")", depth);
}

TEST(ConditionLimits, AreTheOnesPromised) {
    EXPECT_EQ(kMaxParenthesisDepth, 256U);
    EXPECT_EQ(kMaxTextBytes, 1048576U);
}

TEST(ConditionLimits, AllowTheDeepestNestingAndRefuseOneMore) {
    const auto deepest = read(nested(256));
    ASSERT_TRUE(deepest) << deepest.error().message();
    EXPECT_EQ(deepest.value()->printed(), nested(256));
    EXPECT_TRUE(read(deepest.value()->printed()));

    const auto tooDeep = read(nested(257));
    ASSERT_FALSE(tooDeep);
    EXPECT_EQ(tooDeep.error().problem, SyntaxProblem::TooDeep);
    EXPECT_EQ(tooDeep.error().offset, nested(257).find_last_of('('));
    EXPECT_EQ(tooDeep.error().length, 1U);
    EXPECT_EQ(tooDeep.error().message(), "expected at most 256 levels of parentheses but found one more");
}

TEST(ConditionLimits, CountParenthesesThatVanishToo) {
    EXPECT_TRUE(read(repeated("(", 256) + "a.unitValue < 1" + repeated(")", 256)));
    const auto tooDeep = read(repeated("(", 257) + "a.unitValue < 1" + repeated(")", 257));
    ASSERT_FALSE(tooDeep);
    EXPECT_EQ(tooDeep.error().problem, SyntaxProblem::TooDeep);
    EXPECT_EQ(tooDeep.error().offset, 256U);
}

TEST(ConditionLimits, DoNotCountParenthesesSideBySide) {
    EXPECT_TRUE(read(repeated("(a.unitValue < 1) AND ", 1000) + "(b.unitValue < 1)"));
}

// AND inside OR prints in parentheses which the text lacks: 129 such groups need 258 levels.
TEST(ConditionLimits, RefuseWhatWouldPrintTooDeep) {
    const auto mixed = [](std::size_t depth) {
        return repeated("a.unitValue < 1 OR b.unitValue < 1 AND (", depth) +
               "c.unitValue < 1 OR d.unitValue < 1" + repeated(")", depth);
    };
    const auto fits = read(mixed(128));
    ASSERT_TRUE(fits) << fits.error().message();
    EXPECT_TRUE(read(fits.value()->printed()));
    const auto tooDeep = read(mixed(129));
    ASSERT_FALSE(tooDeep);
    EXPECT_EQ(tooDeep.error().problem, SyntaxProblem::TooDeep);
    EXPECT_LE(tooDeep.error().offset + tooDeep.error().length, mixed(129).size());
}

TEST(ConditionLimits, AllowTheLongestTextAndRefuseOneByteMore) {
    const std::string head = "a.stringValue == \"";
    const std::string longest = head + std::string(kMaxTextBytes - head.size() - 1, 'x') + "\"";
    ASSERT_EQ(longest.size(), kMaxTextBytes);
    EXPECT_TRUE(read(longest));
    const auto tooLong = read(longest + " ");
    ASSERT_FALSE(tooLong);
    EXPECT_EQ(tooLong.error().problem, SyntaxProblem::TooLong);
    EXPECT_EQ(tooLong.error().offset, kMaxTextBytes);
    EXPECT_EQ(tooLong.error().length, 1U);
    EXPECT_EQ(tooLong.error().message(), "expected at most 1048576 bytes of text but found 1048577 bytes");
}

// A line break inside a text takes one byte and prints as two.
TEST(ConditionLimits, RefuseWhatWouldPrintTooLong) {
    const auto quoted = [](std::size_t lineBreaks) {
        return "a.stringValue == \"" + std::string(lineBreaks, '\n') + "\"";
    };
    const std::size_t most = (kMaxTextBytes - quoted(0).size()) / 2;
    const auto fits = read(quoted(most));
    ASSERT_TRUE(fits);
    EXPECT_TRUE(read(fits.value()->printed()));
    const auto tooLong = read(quoted(most + 1));
    ASSERT_FALSE(tooLong);
    EXPECT_EQ(tooLong.error().problem, SyntaxProblem::TooLong);
    EXPECT_EQ(tooLong.error().offset, 0U);
    EXPECT_EQ(tooLong.error().length, quoted(most + 1).size());
}

TEST(ConditionLimits, NumbersThatNoDoubleHoldsAreSortedByDigitsAndExponentTogether) {
    const std::string zeros = repeated("0", 400);
    for (const std::string& large :
         std::vector<std::string>{"1" + zeros, "1" + zeros + "e-10", "1" + zeros + ".5e-91", "0.001e312"}) {
        const auto refused = read("a.unitValue < " + large);
        ASSERT_FALSE(refused) << large;
        EXPECT_EQ(refused.error().problem, SyntaxProblem::NumberTooLarge) << large;
    }
    for (const std::string& small : std::vector<std::string>{"0." + zeros + "1", "0." + zeros + "1e10",
                                                             "0." + zeros + "1e76", "1000e-330"}) {
        const auto accepted = read("a.unitValue < " + small);
        ASSERT_TRUE(accepted) << small;
        EXPECT_EQ(accepted.value()->printed(), "a.unitValue < 0") << small;
    }
}

TEST(ConditionLimits, HoldAgainstTextsMadeToExhaust) {
    EXPECT_FALSE(read(std::string(kMaxTextBytes, '(')));
    EXPECT_FALSE(read(std::string(kMaxTextBytes, ')')));
    EXPECT_FALSE(read("a.unitValue < " + std::string(kMaxTextBytes - 14, '9')));
    EXPECT_TRUE(read("a.unitValue < 0." + std::string(kMaxTextBytes - 16, '1')));
    const std::string wide = repeated("a.unitValue<1 OR ", kMaxTextBytes / 17 - 1) + "b.unitValue<1";
    EXPECT_FALSE(read(wide)) << "prints longer than it is";
    const std::string wideAsPrinted =
        repeated("a.unitValue < 1 OR ", kMaxTextBytes / 19 - 1) + "b.unitValue < 1";
    const auto condition = read(wideAsPrinted);
    ASSERT_TRUE(condition) << condition.error().message();
    EXPECT_EQ(condition.value()->tree().parts().size(), kMaxTextBytes / 19);
    EXPECT_FALSE(condition.value()->evaluateWithObject(EvaluationDictionary()));
}

}  // namespace
}  // namespace vigil
