#include "host/command/ConditionHint.hpp"

#include <gtest/gtest.h>

#include "conditions/ConditionPredicate.hpp"

namespace vigil {
namespace {

/// What is said of a text that is no condition.
std::string hint(std::string_view text) {
    const auto condition = ConditionPredicate::predicateWithFormat(text);
    EXPECT_FALSE(condition) << text;
    return condition ? "" : conditionHint(text, condition.error());
}

TEST(ConditionHint, guessesTheMemberTheWordAndTheOperatorThatWereMeant) {
    EXPECT_EQ(hint("windGust > 60"), "did you mean windGust.unitValue?");
    EXPECT_EQ(hint("a.unitValue > 1 OR windGust > 60"), "did you mean windGust.unitValue?");
    EXPECT_EQ(hint("a.unitValue > 1 and b.unitValue < 2"), "did you mean AND, in capitals?");
    EXPECT_EQ(hint("a.unitValue > 1 Or b.unitValue < 2"), "did you mean OR, in capitals?");
    EXPECT_EQ(hint("a.unitValue = 5"), "did you mean ==, for equal?");
    EXPECT_EQ(hint("a.unitValue => 5"), "did you mean >=?");
    EXPECT_EQ(hint("a.unitValue =< 5"), "did you mean <=?");
    EXPECT_EQ(hint("a.unitValue <> 5"), "did you mean !=?");
    EXPECT_EQ(hint("a.unitValue > 1 && b.unitValue > 2"), "did you mean AND?");
    EXPECT_EQ(hint("a.unitValue > 1 || b.unitValue > 2"), "did you mean OR?");
    EXPECT_EQ(hint("a.stringValue == 'x'"), "texts stand in double quotes");
    EXPECT_EQ(hint("a.unitValue > 60,5"), "numbers are written with a point, as in 60.5");
}

TEST(ConditionHint, guessesNothingWhereNothingIsNear) {
    for (const char* text : {"", "a.windGust > 3", "a.value > 5", "a.unitValue >", "(a.unitValue > 1",
                             "a.unitValue > 1, b.unitValue > 2", "7 > 3"})
        EXPECT_EQ(hint(text), "") << text;
}

}  // namespace
}  // namespace vigil
