#include <limits>

#include <gmock/gmock.h>

#include "conditions/editor/LiteralText.hpp"
#include "conditions/editor/PredicateEditor.hpp"
#include "tests/support/EditorBench.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;

class Editing : public testing::Test, public EditorBench {};

TEST_F(Editing, ANewRowComparesTheFirstReadingByTheFirstOperator) {
    ASSERT_TRUE(editor->addRow(0, 0));
    EXPECT_EQ(says(), "windChill.unitValue == 0");
    EXPECT_EQ(edits, 1);
    EXPECT_EQ(changes, 1);
}

TEST_F(Editing, ARowStandsWhereItIsPut) {
    show(
        "windChill.unitValue < 1 OR (windSpeed.unitValue > 2 AND windSpeed.unitValue < 3) OR "
        "windChill.unitValue > 4");
    ASSERT_TRUE(editor->addRow(0, 2));
    EXPECT_EQ(says(),
              "windChill.unitValue < 1 OR (windSpeed.unitValue > 2 AND windSpeed.unitValue < 3) OR "
              "windChill.unitValue == 0 OR windChill.unitValue > 4");
    ASSERT_TRUE(editor->addRow(2, 0));
    ASSERT_TRUE(editor->addRow(0, 4));
    EXPECT_EQ(says(),
              "windChill.unitValue < 1 OR (windChill.unitValue == 0 AND windSpeed.unitValue > 2 AND "
              "windSpeed.unitValue < 3) OR windChill.unitValue == 0 OR windChill.unitValue > 4 OR "
              "windChill.unitValue == 0");
}

TEST_F(Editing, AGroupSaysNothingUntilItHasAPartAndOfOnePartIsThatPart) {
    show("windChill.unitValue < 10");
    ASSERT_TRUE(editor->addGroup(0, 0));
    EXPECT_EQ(says(), "windChill.unitValue < 10");
    ASSERT_TRUE(editor->addRow(1, 0));
    EXPECT_EQ(says(), "windChill.unitValue == 0 AND windChill.unitValue < 10");
    ASSERT_TRUE(editor->addRow(1, 1));
    EXPECT_EQ(says(), "(windChill.unitValue == 0 AND windChill.unitValue == 0) AND windChill.unitValue < 10");
    EXPECT_EQ(edits, 3);
}

TEST_F(Editing, RemovingTheLastComparisonLeavesNoCondition) {
    show("windChill.unitValue < 10");
    ASSERT_TRUE(editor->removeRow(1));
    EXPECT_EQ(says(), "nothing");
    EXPECT_EQ(edits, 1);
    EXPECT_THAT(lines(), ElementsAre("all of these"));
}

TEST_F(Editing, AGroupGoesWithAllThatBelongsToIt) {
    show(
        "windChill.unitValue < 1 OR (windSpeed.unitValue > 2 AND (windSpeed.unitValue < 3 OR "
        "sky.stringValue == \"x\")) OR windChill.unitValue > 4");
    ASSERT_TRUE(editor->removeRow(2));
    EXPECT_EQ(says(), "windChill.unitValue < 1 OR windChill.unitValue > 4");
}

TEST_F(Editing, TheOutermostGroupStays) {
    show("windChill.unitValue < 10");
    const auto refused = editor->removeRow(0);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().message, "the outermost group cannot be removed");
    EXPECT_EQ(edits, 0);
}

TEST_F(Editing, AndBecomesOr) {
    show("windChill.unitValue < 10 AND windSpeed.unitValue > 25");
    ASSERT_TRUE(editor->choose(0, 0, 1));
    EXPECT_EQ(says(), "windChill.unitValue < 10 OR windSpeed.unitValue > 25");
    ASSERT_TRUE(editor->choose(0, 0, 0));
    EXPECT_EQ(says(), "windChill.unitValue < 10 AND windSpeed.unitValue > 25");
    EXPECT_EQ(edits, 2);
}

TEST_F(Editing, AnotherReadingOfTheSameKindKeepsOperatorAndValue) {
    show("windChill.unitValue <= 10");
    ASSERT_TRUE(editor->choose(1, 0, 1));
    EXPECT_EQ(says(), "windSpeed.unitValue <= 10");
}

TEST_F(Editing, AReadingOfAnotherKindStartsWithAValueOfItsKind) {
    show("windChill.unitValue == 10");
    ASSERT_TRUE(editor->choose(1, 0, 2));
    EXPECT_EQ(says(), "sky.stringValue == \"\"");
    ASSERT_TRUE(editor->choose(1, 0, 3));
    EXPECT_EQ(says(), "sunset.value == CAST(0, \"NSDate\")");
}

TEST_F(Editing, AnOperatorThatTheOtherKindDoesNotOfferBecomesItsFirst) {
    show("windChill.unitValue < 10");
    ASSERT_TRUE(editor->choose(1, 0, 2));
    EXPECT_EQ(says(), "sky.stringValue == \"\"");
    ASSERT_TRUE(editor->choose(1, 1, 1));
    ASSERT_TRUE(editor->choose(1, 0, 3));
    EXPECT_EQ(says(), "sunset.value != CAST(0, \"NSDate\")");
}

TEST_F(Editing, ChoosingWhatIsChosenIsNoEdit) {
    show("windChill.unitValue < 10");
    EXPECT_TRUE(editor->choose(1, 0, 0));
    EXPECT_TRUE(editor->choose(1, 1, 1));
    EXPECT_TRUE(editor->setValue(1, 10.0));
    EXPECT_TRUE(editor->setValueText(1, " 10.0"));
    EXPECT_EQ(edits, 0);
}

TEST_F(Editing, ValuesAreSetAsTheyAreAndAsPeopleTypeThem) {
    show("windChill.unitValue < 10 OR sky.stringValue == \"\" OR sunset.value == CAST(0, \"NSDate\")");
    ASSERT_TRUE(editor->setValue(1, -0.0));
    ASSERT_TRUE(editor->setValue(2, std::string("a \"b\"\n")));
    ASSERT_TRUE(editor->setValue(3, Date(1.5)));
    EXPECT_EQ(says(),
              "windChill.unitValue < -0 OR sky.stringValue == \"a \\\"b\\\"\\n\" OR "
              "sunset.value == CAST(1.5, \"NSDate\")");
    ASSERT_TRUE(editor->setValueText(1, "1e1"));
    ASSERT_TRUE(editor->setValueText(2, "10"));
    ASSERT_TRUE(editor->setValueText(3, "2024-01-01T12:00:00+01:00"));
    EXPECT_EQ(says(),
              "windChill.unitValue < 10 OR sky.stringValue == \"10\" OR "
              "sunset.value == CAST(725799600, \"NSDate\")");
    EXPECT_EQ(edits, 6);
}

TEST_F(Editing, AValueThatDoesNotFitIsRefused) {
    show("windChill.unitValue < 10 OR sunset.value == CAST(0, \"NSDate\")");
    EXPECT_EQ(editor->setValue(0, 1.0).error().message, "a group has no value");
    EXPECT_EQ(editor->setValueText(0, "1").error().message, "a group has no value");
    EXPECT_EQ(editor->setValue(1, std::string("x")).error().message,
              "a value of that kind does not go with unitValue");
    for (const double odd :
         {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(editor->setValue(1, odd).error().message, "a number has to be finite");
        EXPECT_EQ(editor->setValue(2, Date(odd)).error().message, "a number has to be finite");
    }
    EXPECT_EQ(editor->setValueText(1, "ten").error().message, "\"ten\" is no number such as 10, -0.5 or 1e3");
    EXPECT_FALSE(editor->setValueText(1, "1 OR a.unitValue == 2"));
    EXPECT_FALSE(editor->setValueText(1, ""));
    EXPECT_FALSE(editor->setValueText(2, "tomorrow"));
    EXPECT_EQ(edits, 0);
}

TEST_F(Editing, AnUntouchedFieldChangesNothingHoweverOddItsValue) {
    for (const char* literal : {"0.1", "-1e300", "1e-300", "725803200", "1.0000001"}) {
        show("sunset.value == CAST(" + std::string(literal) + ", \"NSDate\")");
        const auto before = editor->objectValue();
        EXPECT_TRUE(editor->setValueText(1, editor->rows()[1].valueText));
        EXPECT_EQ(editor->objectValue(), before);
        const auto read = literalFromText(ComparisonMember::Value, editor->rows()[1].valueText);
        ASSERT_TRUE(read) << literal;
        EXPECT_EQ(numberText(std::get<Date>(read.value()).secondsSinceReference()),
                  numberText(std::get<Date>(*editor->rows()[1].value).secondsSinceReference()));
    }
}

TEST_F(Editing, ADateShowsAsACalendarDateWhereThatSaysAll) {
    EXPECT_EQ(literalText(Date(725803200)), "2024-01-01T12:00:00Z");
    EXPECT_EQ(literalText(Date(0.5)), "2001-01-01T00:00:00.500000Z");
    EXPECT_EQ(literalText(Date(1e300)), "1e+300");
    EXPECT_EQ(literalText(Date(-0.0)), "-0");
}

TEST_F(Editing, RowsKeepTheirNamesFromChangeToChange) {
    show("windChill.unitValue < 10 OR windSpeed.unitValue > 25");
    const auto before = editor->rows();
    ASSERT_TRUE(editor->addRow(0, 0));
    const auto after = editor->rows();
    EXPECT_EQ(after[0].id, before[0].id);
    EXPECT_EQ(after[2].id, before[1].id);
    EXPECT_EQ(after[3].id, before[2].id);
    for (const auto& row : before)
        EXPECT_NE(after[1].id, row.id);
}

}  // namespace
}  // namespace vigil
