#include "host/desktop/RuleView.hpp"

#include <gtest/gtest.h>

#include "host/desktop/Words.hpp"
#include "tests/desktop/DesktopBench.hpp"
#include "tests/view/ShownMonitor.hpp"

namespace vigil::test {
namespace {

class RuleViewed : public testing::Test {
  protected:
    RuleViewed() {
        monitor.show();
        editor = monitor.control<RuleEditor>();
        view.attach(
            editor, [this] { ++told; }, [this](std::int64_t row) { tested = row; });
        view.resize(900, 300);
        view.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&view));
    }
    QComboBox& action(std::int64_t row) { return *qobject_cast<QComboBox*>(view.rowAt(row)->firstField()); }
    void chooseAction(std::int64_t row, const char* title) {
        QComboBox& box = action(row);
        const int index = box.findText(QString::fromLatin1(title));
        ASSERT_GE(index, 0) << title;
        Q_EMIT box.activated(index);
    }
    std::string says(std::int64_t row) {
        std::string line;
        for (const DisplayValue& value : editor->displayValuesForRow(row))
            line += "|" + titleOfSelectedItem(value).value_or(stringValue(value).value_or(""));
        return line;
    }

    ShownMonitor monitor;
    std::shared_ptr<RuleEditor> editor;
    RuleView view;
    int told = 0;
    std::int64_t tested = -1;
};

TEST_F(RuleViewed, OffersTheTreeWithItsSeparators) {
    QComboBox& box = action(0);
    QStringList titles;
    for (int i = 0; i < box.count(); ++i)
        titles << (box.itemData(i, Qt::AccessibleDescriptionRole) == "separator" ? "-" : box.itemText(i));
    EXPECT_EQ(titles.join("|"), "Run script|Play Sound|-|Speak Text|Speak Conditions|-");
}

TEST_F(RuleViewed, WhatIsTypedIsTheRowsOwnText) {
    ASSERT_EQ(says(0), "|Run script|");
    auto* field = view.rowAt(0)->findChild<QLineEdit*>();
    ASSERT_NE(field, nullptr);
    retype(*field, "note.sh roof");
    EXPECT_EQ(says(0), "|Run script|note.sh roof");
    EXPECT_GT(told, 0);
}

TEST_F(RuleViewed, ASoundIsChosenByKeysAmongThoseThatAreThere) {
    chooseAction(0, "Play Sound");
    const auto boxes = view.rowAt(0)->findChildren<QComboBox*>();
    ASSERT_EQ(boxes.size(), 2);
    QComboBox& sounds = boxes[0] == &action(0) ? *boxes[1] : *boxes[0];
    ASSERT_EQ(sounds.count(), 2);
    choose(sounds, sounds.findText("horn.mp3"));
    EXPECT_EQ(says(0), "|Play Sound|horn.mp3");
}

TEST_F(RuleViewed, YesAndNoAreChoices) {
    chooseAction(0, "Speak Conditions");
    const auto boxes = view.rowAt(0)->findChildren<QComboBox*>();
    ASSERT_EQ(boxes.size(), 2);
    const std::string before = says(0);
    QComboBox& choices = boxes[0] == &action(0) ? *boxes[1] : *boxes[0];
    ASSERT_EQ(choices.count(), 2);
    Q_EMIT choices.activated(1 - choices.currentIndex());
    EXPECT_NE(says(0), before);
}

TEST_F(RuleViewed, TheOnlyRowStaysAndAllOthersMayGo) {
    QToolButton* remove = child<QToolButton>(*view.rowAt(0), "remove");
    EXPECT_FALSE(remove->isEnabled());
    press(view, "addAction");
    ASSERT_EQ(editor->numberOfRows(), 2);
    EXPECT_TRUE(child<QToolButton>(*view.rowAt(0), "remove")->isEnabled());
    chooseAction(1, "Speak Text");
    press(*view.rowAt(0), "remove");
    ASSERT_EQ(editor->numberOfRows(), 1);
    EXPECT_EQ(says(0), "|Speak Text|");
    EXPECT_FALSE(child<QToolButton>(*view.rowAt(0), "remove")->isEnabled());
}

TEST_F(RuleViewed, RowsAreReorderedWithTheirTexts) {
    retype(*view.rowAt(0)->findChild<QLineEdit*>(), "first.sh");
    press(view, "addAction");
    retype(*view.rowAt(1)->findChild<QLineEdit*>(), "second.sh");
    press(*view.rowAt(1), "up");
    EXPECT_EQ(says(0), "|Run script|second.sh");
    EXPECT_EQ(says(1), "|Run script|first.sh");
    QTest::keyClick(view.rowAt(0), Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(says(0), "|Run script|first.sh");
    EXPECT_EQ(monitor.archive().find("second.sh") > monitor.archive().find("first.sh"), true);
}

TEST_F(RuleViewed, OneRowIsAskedToBeTested) {
    press(view, "addAction");
    press(*view.rowAt(1), "testRow");
    EXPECT_EQ(tested, 1);
    view.rowAt(1)->setResult("succeeded", false);
    EXPECT_TRUE(view.rowAt(1)->isVisible());
}

}  // namespace
}  // namespace vigil::test
