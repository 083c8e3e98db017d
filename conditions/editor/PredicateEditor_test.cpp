#include "conditions/editor/PredicateEditor.hpp"

#include <stdexcept>

#include <gmock/gmock.h>

#include "tests/support/EditorBench.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class Editor : public testing::Test, public EditorBench {};

TEST_F(Editor, OneThatIsEmptySaysNothing) {
    EXPECT_EQ(editor->objectValue(), nullptr);
    EXPECT_THAT(lines(), ElementsAre("all of these"));
}

TEST_F(Editor, ShowsAConditionAsRowsWithTheirDepth) {
    show("windChill.unitValue < 10 OR (sky.stringValue == \"Rain\" AND windSpeed.unitValue > 25)");
    EXPECT_THAT(lines(), ElementsAre("any of these", "  Wind chill | is less than | 10", "  all of these",
                                     "    Sky | is | Rain", "    Wind speed | is greater than | 25"));
    const auto rows = editor->rows();
    EXPECT_EQ(rows[4].group, 2u);
    EXPECT_EQ(rows[4].position, 1u);
    EXPECT_EQ(rows[2].group, 0u);
    EXPECT_EQ(rows[2].position, 1u);
    EXPECT_EQ(rows[0].group, 0u);
}

TEST_F(Editor, AComparisonAloneStandsInAGroupThatItDoesNotNeed) {
    show("sky.stringValue == \"Rain\"");
    EXPECT_THAT(lines(), ElementsAre("all of these", "  Sky | is | Rain"));
    EXPECT_EQ(says(), "sky.stringValue == \"Rain\"");
}

TEST_F(Editor, ShowingAConditionIsNoEdit) {
    show("windChill.unitValue < 10");
    editor->setObjectValue(nullptr);
    EXPECT_EQ(edits, 0);
    EXPECT_EQ(changes, 2);
    EXPECT_THAT(lines(), ElementsAre("all of these"));
}

TEST_F(Editor, GivesBackTheVeryConditionThatItShows) {
    const auto condition = parsed("windChill.unitValue < 10");
    editor->setObjectValue(condition);
    EXPECT_EQ(editor->objectValue(), condition);
}

TEST_F(Editor, ShowingAnEqualConditionKeepsGroupsWithoutParts) {
    show("windChill.unitValue < 10");
    ASSERT_TRUE(editor->addGroup(0, 1));
    show("windChill.unitValue < 10");
    EXPECT_EQ(editor->numberOfRows(), 3u);
    EXPECT_EQ(changes, 2) << "the second showing changed nothing";
}

TEST_F(Editor, AConditionThatWasNeverReadShowsAsNone) {
    show("windChill.unitValue < 10");
    editor->setObjectValue(std::make_shared<ConditionPredicate>());
    EXPECT_EQ(editor->objectValue(), nullptr);
    EXPECT_EQ(editor->numberOfRows(), 1u);
}

TEST_F(Editor, OffersWhatTheTemplatesOfferInTheirOrder) {
    show("windChill.unitValue < 10 OR sky.stringValue != \"\"");
    EXPECT_THAT(editor->choices(0, 0), ElementsAre("all of these", "any of these"));
    EXPECT_THAT(editor->choices(1, 0), ElementsAre("Wind chill", "Wind speed", "Sky", "Sunset"));
    EXPECT_THAT(editor->choices(1, 1),
                ElementsAre("is", "is less than", "is greater than", "is less than or equal to",
                            "is greater than or equal to"));
    EXPECT_THAT(editor->choices(2, 1), ElementsAre("is", "is not"));
    EXPECT_EQ(editor->rows()[1].popUps[0].chosen, 0u);
    EXPECT_EQ(editor->rows()[2].popUps[0].chosen, 2u);
    EXPECT_EQ(editor->rows()[2].popUps[1].chosen, 1u);
}

TEST_F(Editor, AReadingThatTheStationLacksIsShownByItsKeyPathAndKept) {
    show("uv.unitValue >= 8 AND windChill.unitValue < 10");
    EXPECT_THAT(lines(), ElementsAre("all of these", "  uv.unitValue | is greater than or equal to | 8",
                                     "  Wind chill | is less than | 10"));
    EXPECT_EQ(editor->rows()[1].popUps[0].chosen, std::nullopt);
    EXPECT_EQ(editor->rows()[1].condition, "uv.unitValue >= 8");
    ASSERT_TRUE(editor->setValueText(2, "11"));
    EXPECT_EQ(says(), "uv.unitValue >= 8 AND windChill.unitValue < 11");
}

TEST_F(Editor, AReadingWhoseKindHasChangedIsShownAsWhatItWas) {
    show("windChill.stringValue == \"cold\"");
    EXPECT_THAT(lines(), ElementsAre("all of these", "  windChill.stringValue | is | cold"));
    EXPECT_THAT(editor->choices(1, 1), ElementsAre("is", "is not"));
    EXPECT_EQ(says(), "windChill.stringValue == \"cold\"");
}

TEST_F(Editor, AnOperatorThatIsNotOfferedIsShownAndKept) {
    show("windChill.unitValue != 10 OR sky.stringValue < \"R\"");
    EXPECT_THAT(lines(),
                ElementsAre("any of these", "  Wind chill | is not | 10", "  Sky | is less than | R"));
    EXPECT_EQ(editor->rows()[1].popUps[1].chosen, std::nullopt);
    ASSERT_TRUE(editor->choose(1, 0, 1));
    EXPECT_EQ(says(), "windSpeed.unitValue != 10 OR sky.stringValue < \"R\"");
}

TEST_F(Editor, WithoutTemplatesEveryConditionIsShownAndKept) {
    editor->setRowTemplates({});
    show("windChill.unitValue < 10 OR windSpeed.unitValue > 25");
    EXPECT_THAT(lines(), ElementsAre("any of these", "  windChill.unitValue | is less than | 10",
                                     "  windSpeed.unitValue | is greater than | 25"));
    EXPECT_TRUE(editor->choices(0, 0).empty());
    EXPECT_TRUE(editor->choices(1, 0).empty());
    EXPECT_FALSE(editor->addRow(0, 0));
    EXPECT_FALSE(editor->addGroup(0, 0));
    EXPECT_EQ(edits, 0);
}

TEST_F(Editor, NewTemplatesAreNoEditAndLeaveTheRows) {
    show("windChill.unitValue < 10");
    editor->setRowTemplates({});
    EXPECT_EQ(edits, 0);
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(says(), "windChill.unitValue < 10");
}

TEST_F(Editor, AnItemThatTheLanguageCannotSayIsNotOffered) {
    using Expression = KeyPathExpression;
    PredicateEditorRowTemplate::Expressions odd;
    for (const char* keyPath : {"AND.unitValue", "wind-chill.unitValue", "sky.stringValue", "plain",
                                "a.unitValue OR b.unitValue", "fine.unitValue", " a.unitValue"})
        odd.push_back(Expression::expressionForKeyPath(keyPath));
    editor->setRowTemplates({PredicateEditorRowTemplate::initWithLeftExpressions(
        std::move(odd), AttributeType::Double, ComparisonPredicateModifier::Direct,
        {PredicateOperatorType::EqualTo}, ComparisonPredicateOptions::None)});
    ASSERT_TRUE(editor->addRow(0, 0));
    EXPECT_THAT(editor->choices(1, 0), ElementsAre("fine.unitValue"));
}

TEST_F(Editor, PlacesThatDoNotExistAreRefusedAndChangeNothing) {
    show("windChill.unitValue < 10");
    EXPECT_THROW((void)editor->addRow(2, 0), std::out_of_range);
    EXPECT_THROW((void)editor->addRow(1, 0), std::out_of_range) << "a comparison is no group";
    EXPECT_THROW((void)editor->addRow(0, 2), std::out_of_range);
    EXPECT_THROW((void)editor->addGroup(0, 2), std::out_of_range);
    EXPECT_THROW((void)editor->removeRow(2), std::out_of_range);
    EXPECT_THROW((void)editor->choose(1, 2, 0), std::out_of_range);
    EXPECT_THROW((void)editor->choose(0, 1, 0), std::out_of_range);
    EXPECT_THROW((void)editor->choose(0, 0, 2), std::out_of_range);
    EXPECT_THROW((void)editor->choices(2, 0), std::out_of_range);
    EXPECT_THROW((void)editor->setValue(2, 1.0), std::out_of_range);
    EXPECT_THROW((void)editor->setValueText(2, "1"), std::out_of_range);
    EXPECT_EQ(says(), "windChill.unitValue < 10");
    EXPECT_EQ(edits, 0);
}

TEST(RowTemplate, KeepsWhatItWasMadeOf) {
    const auto made = PredicateEditorRowTemplate::initWithLeftExpressions(
        {KeyPathExpression::expressionForKeyPath("b"), KeyPathExpression::expressionForKeyPath("a")},
        AttributeType::String, ComparisonPredicateModifier::Direct,
        {PredicateOperatorType::EqualTo, PredicateOperatorType::NotEqualTo},
        ComparisonPredicateOptions::None);
    EXPECT_FALSE(made->isCompound());
    EXPECT_EQ(made->rightExpressionAttributeType(), AttributeType::String);
    EXPECT_EQ(made->modifier(), ComparisonPredicateModifier::Direct);
    EXPECT_EQ(made->options(), ComparisonPredicateOptions::None);
    EXPECT_THAT(made->operators(),
                ElementsAre(PredicateOperatorType::EqualTo, PredicateOperatorType::NotEqualTo));
    ASSERT_EQ(made->itemArray().size(), 2u);
    EXPECT_EQ(made->itemArray()[0].title(), "b");
    EXPECT_EQ(made->itemArray()[0].representedObject().keyPath(), "b");
    EXPECT_EQ(made->className(), "PredicateEditorRowTemplate");

    const auto group = PredicateEditorRowTemplate::initWithCompoundTypes(
        {CompoundPredicateType::Or, CompoundPredicateType::And});
    EXPECT_TRUE(group->isCompound());
    EXPECT_THAT(group->compoundTypes(), ElementsAre(CompoundPredicateType::Or, CompoundPredicateType::And));
}

}  // namespace
}  // namespace vigil
