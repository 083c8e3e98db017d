// Runs the text vectors; their form is in tests/vectors/conditions/README.md.

#include <cstdlib>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "conditions/ConditionPredicate.hpp"
#include "tests/support/ConditionVectors.hpp"
#include "tests/support/NaiveCondition.hpp"
#include "tests/support/VectorFile.hpp"

namespace vigil {
namespace {

using test::VectorCase;

std::string fieldOf(const VectorCase& each, const char* name) {
    const auto value = each.text(name);
    if (!value) throw std::runtime_error(each.place() + ": no field " + name);
    return *value;
}

TEST(ConditionVectors, AcceptedTextsPrintCanonicallyAndMakeTheirTree) {
    for (const VectorCase& each : test::readVectors("conditions", "accepted_")) {
        SCOPED_TRACE(each.place());
        const auto read = ConditionPredicate::predicateWithFormat(fieldOf(each, "text"));
        if (!read) {
            ADD_FAILURE() << read.error().message() << " at " << read.error().offset;
            continue;
        }
        const std::string printed = fieldOf(each, "prints");
        EXPECT_EQ(read.value()->printed(), printed);
        const std::string tree = test::treeNotation(read.value()->tree());
        EXPECT_EQ(tree, each.text("tree").value_or(tree));

        const auto again = ConditionPredicate::predicateWithFormat(printed);
        if (!again) {
            ADD_FAILURE() << again.error().message() << " at " << again.error().offset;
            continue;
        }
        EXPECT_TRUE(again.value()->isEqual(read.value().get()));
        EXPECT_EQ(again.value()->printed(), printed);
        EXPECT_TRUE(test::naiveVerdict(fieldOf(each, "text"), {}).has_value())
            << "the naive judge refuses it";
    }
}

TEST(ConditionVectors, RejectedTextsSayWhatStandsWhereAndWhatCould) {
    for (const VectorCase& each : test::readVectors("conditions", "rejected_")) {
        SCOPED_TRACE(each.place());
        const std::string text = fieldOf(each, "text");
        const auto read = ConditionPredicate::predicateWithFormat(text);
        if (read) {
            ADD_FAILURE() << "accepted as " << read.value()->printed();
            continue;
        }
        const SyntaxError& error = read.error();
        EXPECT_EQ(std::to_string(error.offset) + " " + std::to_string(error.length), fieldOf(each, "at"));
        EXPECT_EQ(problemName(error.problem), fieldOf(each, "problem"));
        EXPECT_EQ(error.expected, fieldOf(each, "expected"));
        EXPECT_EQ(error.found, fieldOf(each, "found"));
        EXPECT_EQ(error.message(), "expected " + error.expected + " but found " + error.found);
        EXPECT_LE(error.offset + error.length, text.size());
        EXPECT_FALSE(test::naiveVerdict(text, {}).has_value()) << "the naive judge accepts it";
    }
}

TEST(ConditionVectors, ConditionsHoldOfTheReadingsThatTheyShould) {
    for (const VectorCase& each : test::readVectors("conditions", "evaluations_")) {
        SCOPED_TRACE(each.place());
        const std::string text = fieldOf(each, "text");
        const auto read = ConditionPredicate::predicateWithFormat(text);
        ASSERT_TRUE(read) << read.error().message();
        const auto givens = each.all("given");
        ASSERT_FALSE(givens.empty());
        for (const VectorCase::Field* given : givens) {
            SCOPED_TRACE(each.file + ":" + std::to_string(given->line) + ": " + given->value);
            const test::Given parts = test::readGiven(given->value);
            EXPECT_EQ(read.value()->evaluateWithObject(parts.readings.readings), parts.holds);
            EXPECT_EQ(test::naiveVerdict(text, parts.readings.naive), parts.holds) << "the naive judge";
        }
    }
}

TEST(ConditionVectors, AFileWithoutCasesIsAnError) {
    EXPECT_THROW(test::readVectors("conditions", "no_such_"), std::runtime_error);
    EXPECT_THROW(test::readVectors("conditions", "README"), std::runtime_error);
    EXPECT_THROW(test::unescaped("\\q"), std::runtime_error);
    EXPECT_EQ(test::unescaped("a\\t\\x00\\\\"), std::string("a\t\0\\", 4));
}

}  // namespace
}  // namespace vigil
