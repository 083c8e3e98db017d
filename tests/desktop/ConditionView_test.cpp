#include "host/desktop/ConditionView.hpp"

#include <gmock/gmock.h>

#include "host/desktop/Words.hpp"
#include "tests/desktop/DesktopBench.hpp"
#include "tests/support/EditorBench.hpp"

namespace vigil::test {
namespace {

using testing::ElementsAre;

class ConditionViewed : public testing::Test, protected EditorBench {
  protected:
    ConditionViewed() {
        show("windChill.unitValue < 10 OR windSpeed.unitValue > 25");
        view.attach(
            editor,
            [this](std::shared_ptr<ConditionPredicate> condition) { editor->setObjectValue(condition); },
            [this] { ++told; });
        view.resize(900, 400);
        view.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&view));
    }
    QComboBox& popUp(std::size_t row, const char* name) { return *child<QComboBox>(*view.rowAt(row), name); }
    QLineEdit& value(std::size_t row) { return *child<QLineEdit>(*view.rowAt(row), "value"); }
    QString text() { return view.text().field().toPlainText(); }
    void judge(std::vector<AgentProperty> readings) {
        view.judge(Readings::make(std::move(readings)), Date(1000));
    }
    QString verdict(std::size_t row) { return child<QLabel>(*view.rowAt(row), "verdict")->accessibleName(); }

    ConditionView view;
    int told = 0;
};

TEST_F(ConditionViewed, ShowsEachRowAndTheWholeAsText) {
    EXPECT_EQ(popUp(0, "connective").currentText(), "any of these");
    EXPECT_EQ(popUp(1, "reading").currentText(), "Wind chill");
    EXPECT_EQ(popUp(1, "operator").currentText(), "is less than");
    EXPECT_EQ(value(1).text(), "10");
    EXPECT_EQ(popUp(2, "reading").currentText(), "Wind speed");
    EXPECT_EQ(text(), "windChill.unitValue < 10 OR windSpeed.unitValue > 25");
}

TEST_F(ConditionViewed, PopUpsAreChosenByKeys) {
    choose(popUp(1, "operator"), 2);
    choose(popUp(0, "connective"), 0);
    EXPECT_EQ(says(), "windChill.unitValue > 10 AND windSpeed.unitValue > 25");
    EXPECT_EQ(text(), "windChill.unitValue > 10 AND windSpeed.unitValue > 25");
    EXPECT_EQ(told, 2);
}

TEST_F(ConditionViewed, ANumberIsTakenAsItIsTypedAndWhatIsNoNumberIsToldAndLeft) {
    retype(value(1), "-2.5");
    EXPECT_EQ(says(), "windChill.unitValue < -2.5 OR windSpeed.unitValue > 25");
    QTest::keyClicks(&value(1), "x");
    EXPECT_TRUE(value(1).property("bad").toBool());
    EXPECT_EQ(says(), "windChill.unitValue < -2.5 OR windSpeed.unitValue > 25");
    QTest::keyClick(&value(1), Qt::Key_Return);
    EXPECT_EQ(value(1).text(), "-2.5") << "what counts is shown";
    EXPECT_FALSE(value(1).property("bad").toBool());
}

TEST_F(ConditionViewed, TypingIntoOneFieldIsOneStepBack) {
    retype(value(1), "123");
    EXPECT_EQ(value(1).text(), "123");
    ASSERT_TRUE(view.canUndo());
    view.undo();
    EXPECT_EQ(says(), "windChill.unitValue < 10 OR windSpeed.unitValue > 25");
    EXPECT_FALSE(view.canUndo());
    view.redo();
    EXPECT_EQ(says(), "windChill.unitValue < 123 OR windSpeed.unitValue > 25");
    EXPECT_FALSE(view.canRedo());
}

TEST_F(ConditionViewed, RowsAreAddedAndRemovedByTheMouse) {
    press(*view.rowAt(0), "addRow");
    EXPECT_EQ(editor->numberOfRows(), 4u);
    EXPECT_EQ(says(), "windChill.unitValue < 10 OR windSpeed.unitValue > 25 OR windChill.unitValue == 0");
    press(*view.rowAt(1), "remove");
    EXPECT_EQ(says(), "windSpeed.unitValue > 25 OR windChill.unitValue == 0");
    view.undo();
    view.undo();
    EXPECT_EQ(says(), "windChill.unitValue < 10 OR windSpeed.unitValue > 25");
}

TEST_F(ConditionViewed, AGroupBeginsWithAComparisonAndTakesMore) {
    press(*view.rowAt(0), "addGroup");
    ASSERT_EQ(editor->numberOfRows(), 5u);
    press(*view.rowAt(3), "addRow");
    choose(popUp(3, "connective"), 0);
    EXPECT_EQ(says(),
              "windChill.unitValue < 10 OR windSpeed.unitValue > 25 OR (windChill.unitValue == 0 AND "
              "windChill.unitValue == 0)");
    EXPECT_THAT(lines(), ElementsAre("any of these", "  Wind chill | is less than | 10",
                                     "  Wind speed | is greater than | 25", "  all of these",
                                     "    Wind chill | is | 0", "    Wind chill | is | 0"));
}

TEST_F(ConditionViewed, AReadingOfAnotherKindGetsAnotherField) {
    choose(popUp(1, "reading"), 2);
    ASSERT_NE(child<QComboBox>(*view.rowAt(1), "value"), nullptr);
    child<QComboBox>(*view.rowAt(1), "value")->setEditText("Rain");
    EXPECT_EQ(says(), "sky.stringValue == \"Rain\" OR windSpeed.unitValue > 25");
}

TEST_F(ConditionViewed, ARowIsMovedByKeysPastTheOthers) {
    popUp(1, "reading").setFocus();
    QTest::keyClick(view.rowAt(1), Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(says(), "windSpeed.unitValue > 25 OR windChill.unitValue < 10");
    view.undo();
    EXPECT_EQ(says(), "windChill.unitValue < 10 OR windSpeed.unitValue > 25");
}

TEST_F(ConditionViewed, EachRowTellsWhetherItHolds) {
    judge({AgentProperty::number("windChill", 4, Date(990))});
    EXPECT_EQ(verdict(1), "holds");
    EXPECT_EQ(verdict(2), "no value");
    EXPECT_EQ(child<QLabel>(*view.rowAt(1), "now")->text(), "4 · 10 s");
    judge({AgentProperty::number("windChill", 14, Date(999)),
           AgentProperty::number("windSpeed", NAN, Date(999))});
    EXPECT_EQ(verdict(1), "does not hold");
    EXPECT_EQ(verdict(2), "no value");
}

TEST_F(ConditionViewed, ATypedConditionIsTakenWholeAndAMistakeIsShownAtItsPlace) {
    QPlainTextEdit& field = view.text().field();
    field.setFocus();
    field.selectAll();
    QTest::keyClicks(&field, "windSpeed.unitValue >");
    const auto* mistake = child<QLabel>(view, "mistake");
    EXPECT_TRUE(mistake->isVisible());
    EXPECT_EQ(mistake->text(),
              "windSpeed.unitValue >\n                     ^ expected a number but found end of text");
    EXPECT_EQ(says(), "windChill.unitValue < 10 OR windSpeed.unitValue > 25") << "nothing is taken yet";
    QTest::keyClicks(&field, " 30");
    EXPECT_FALSE(mistake->isVisible());
    EXPECT_EQ(says(), "windSpeed.unitValue > 30");
    EXPECT_EQ(value(1).text(), "30");
    view.undo();
    EXPECT_EQ(says(), "windChill.unitValue < 10 OR windSpeed.unitValue > 25");
}

TEST_F(ConditionViewed, AnotherConditionPutsGroupsWhereComparisonsWere) {
    show("windChill.unitValue < 10 AND (windSpeed.unitValue > 25 OR windChill.unitValue < 1)");
    ASSERT_EQ(editor->numberOfRows(), 5u);
    for (std::size_t row = 0; row < 5; ++row)
        EXPECT_EQ(view.rowAt(row)->isGroup(), row == 0 || row == 2) << row;
    EXPECT_NE(child<QComboBox>(*view.rowAt(2), "connective"), nullptr);
}

TEST_F(ConditionViewed, AThresholdIsSetByItsPlaceInTheCondition) {
    view.setNumber(1, 33.5);
    EXPECT_EQ(says(), "windChill.unitValue < 10 OR windSpeed.unitValue > 33.5");
}

TEST(CaretText, ShowsTheNeighbourhoodOfAFarMistake) {
    const std::string text = "aaaaaaaaaa.unitValue < 1 OR bbbbbbbbbbbbbbbbbbbb.unitValue < 2 OR c < 3";
    const auto parsed = ConditionPredicate::predicateWithFormat(text);
    ASSERT_FALSE(parsed);
    const QStringList lines = caretText(text, parsed.error()).split('\n');
    ASSERT_EQ(lines.size(), 2);
    const auto caret = lines[1].indexOf('^');
    EXPECT_EQ(utf8(lines[0].mid(caret)).substr(0, 1), text.substr(parsed.error().offset, 1));
    EXPECT_TRUE(lines[0].startsWith(QStringLiteral("…")));
    const QStringList narrow = caretText(text, parsed.error(), 60).split('\n');
    ASSERT_EQ(narrow.size(), 2);
    EXPECT_LT(narrow[1].indexOf('^'), lines[1].indexOf('^'));
    EXPECT_EQ(narrow[0][narrow[1].indexOf('^')], lines[0][lines[1].indexOf('^')]) << "at the same letter";
}

}  // namespace
}  // namespace vigil::test
