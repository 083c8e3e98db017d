#include <QAbstractButton>
#include <QAccessible>
#include <QCheckBox>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>
#include <algorithm>

#include <gtest/gtest.h>

#include "host/desktop/ConditionView.hpp"
#include "host/desktop/Theme.hpp"
#include "host/desktop/Words.hpp"
#include "tests/desktop/DesktopBench.hpp"
#include "tests/desktop/Longer.hpp"
#include "tests/desktop/Stage.hpp"

// The window is for everyone: by keys alone, by ear, in longer languages, in light and dark.

namespace vigil::test {
namespace {

QString nameOf(QWidget& widget) {
    const QAccessibleInterface* known = QAccessible::queryAccessibleInterface(&widget);
    if (!known) return {};
    const QString name = known->text(QAccessible::Name);
    return name.isEmpty() ? known->text(QAccessible::Description) : name;
}

class Everyone : public testing::Test {
  protected:
    void open() {
        stage.open("home", /*first=*/true);
        ASSERT_TRUE(waitUntil([&] { return stage.window().pane() && stage.window().pane()->view(); }));
        auto* readings = stage.window().findChild<ReadingsTable*>();
        ASSERT_TRUE(waitUntil([&] { return readings->model()->rowCount() > 10; }));
        turn(300);
    }
    Stage stage;
};

/// What takes a press or a text now.
std::vector<QWidget*> fields(const QWidget& window) {
    std::vector<QWidget*> found;
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        const bool takes = qobject_cast<QAbstractButton*>(widget) || qobject_cast<QComboBox*>(widget) ||
                           qobject_cast<QLineEdit*>(widget) || qobject_cast<QAbstractItemView*>(widget);
        // What Qt makes inside its own widgets is reached by way of these.
        const QString inner = widget->objectName();
        if (!takes || !widget->isVisible() || !widget->isEnabled() || inner.startsWith("qt_") ||
            qobject_cast<QComboBox*>(widget->parentWidget()) || inner.startsWith("ScrollLeft") ||
            inner.startsWith("ScrollRight") || qobject_cast<QAbstractItemView*>(widget->parentWidget()))
            continue;
        found.push_back(widget);
    }
    return found;
}

TEST_F(Everyone, WhateverTakesAPressOrATextIsReachedByKeysAndHasAName) {
    open();
    const auto found = fields(stage.window());
    for (QWidget* widget : found) {
        const QString inner = widget->objectName();
        const std::string what = widget->metaObject()->className() + std::string(" ") + utf8(inner) + " in " +
                                 widget->parentWidget()->metaObject()->className() + " " +
                                 utf8(widget->parentWidget()->objectName());
        EXPECT_TRUE(widget->focusPolicy() & Qt::TabFocus) << what;
        EXPECT_FALSE(nameOf(*widget).isEmpty()) << what;
    }
    EXPECT_GT(found.size(), 25u);
}

TEST_F(Everyone, TabGoesRoundThroughAllOfItAndIsCaughtNowhere) {
    open();
    QWidget* const first = stage.window().focusWidget();
    ASSERT_NE(first, nullptr);
    constexpr int kMost = 300;
    std::vector<QWidget*> passed;
    QWidget* at = first;
    do {
        QTest::keyClick(at, Qt::Key_Tab);
        QWidget* const next = stage.window().focusWidget();
        ASSERT_NE(next, at) << "caught in " << at->metaObject()->className() << " " << utf8(at->objectName());
        passed.push_back(at = next);
    } while (at != first && passed.size() < kMost);
    EXPECT_EQ(at, first) << "it does not come round";
    for (QWidget* field : fields(stage.window())) {
        const bool reached = std::any_of(passed.begin(), passed.end(), [&](QWidget* one) {
            return one == field || field->isAncestorOf(one);
        });
        EXPECT_TRUE(reached) << field->metaObject()->className() << " " << utf8(nameOf(*field));
    }
}

TEST_F(Everyone, InALongerLanguageNothingIsCut) {
    Longer longer;
    QCoreApplication::installTranslator(&longer);
    open();
    int looked = 0;
    for (QWidget* widget : stage.window().findChildren<QWidget*>()) {
        auto* words = qobject_cast<QLabel*>(widget);
        auto* button = qobject_cast<QAbstractButton*>(widget);
        const bool shows = (words && !words->wordWrap() && !words->text().isEmpty()) ||
                           (button && !button->text().isEmpty());
        if (!shows || !widget->isVisible()) continue;
        ++looked;
        EXPECT_GE(widget->width() + 1, widget->minimumSizeHint().width())
            << utf8(words ? words->text() : button->text());
    }
    EXPECT_GT(looked, 15);
    QCoreApplication::removeTranslator(&longer);
}

TEST_F(Everyone, StatesAreToldByWordsAndSignsAndNotByColourAlone) {
    open();
    const auto& view = *stage.window().pane()->view()->condition();
    const auto* verdict = child<QLabel>(*view.rowAt(1), "verdict");
    ASSERT_TRUE(waitUntil([&] { return !verdict->accessibleName().isEmpty(); }));
    EXPECT_FALSE(verdict->toolTip().isEmpty());
    EXPECT_FALSE(stage.window().findChild<QLabel*>("monitorState")->text().isEmpty());
    // Texts stand out from their ground, by the rule for normal text.
    const auto light = [](const QColor& colour) {
        const auto part = [](double c) {
            return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF());
    };
    const auto contrast = [&](const QColor& a, const QColor& b) {
        const double one = light(a) + 0.05, two = light(b) + 0.05;
        return std::max(one, two) / std::min(one, two);
    };
    for (const auto appearance : {Appearance::Dark, Appearance::Light}) {
        applyTheme(*qApp, appearance);
        const Theme& now = theme();
        const std::pair<QColor, QColor> pairs[] = {
            {now.text, now.window},  {now.text, now.card},         {now.muted, now.card},
            {now.muted, now.window}, {now.good, now.goodSoft},     {now.warn, now.warnSoft},
            {now.bad, now.badSoft},  {now.accent, now.accentSoft}, {now.onAccent, now.accent},
            {now.good, now.card},    {now.accent, now.card},       {now.bad, now.card}};
        for (const auto& [words, ground] : pairs)
            EXPECT_GE(contrast(words, ground), 4.5) << utf8(words.name()) << " on " << utf8(ground.name());
    }
}

TEST_F(Everyone, AThresholdIsMovedByKeysAndByTheMouse) {
    open();
    MonitorPane& pane = *stage.window().pane();
    Chart& chart = pane.chart()->chart();
    const auto number = [&] {
        return child<QLineEdit>(*pane.view()->condition()->rowAt(1), "value")->text().toDouble();
    };
    ASSERT_EQ(number(), 10);
    chart.setFocus();
    QTest::keyClick(&chart, Qt::Key_Up);
    const double moved = number();
    EXPECT_GT(moved, 10);
    // The mouse takes the line where it stands now and lets it go lower.
    chart.grab();
    int line = -1;
    for (int y = 6; y < 130 && line < 0; ++y) {
        QTest::mouseMove(&chart, QPoint(200, y));
        QMouseEvent over(QEvent::MouseMove, QPointF(200, y), chart.mapToGlobal(QPointF(200, y)), Qt::NoButton,
                         Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&chart, &over);
        if (chart.cursor().shape() == Qt::SizeVerCursor) line = y + 7;
    }
    ASSERT_GE(line, 0) << "no line is to be taken";
    const auto send = [&](QEvent::Type type, int y, Qt::MouseButtons held) {
        QMouseEvent event(type, QPointF(200, y), chart.mapToGlobal(QPointF(200, y)), Qt::LeftButton, held,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(&chart, &event);
    };
    send(QEvent::MouseButtonPress, line, Qt::LeftButton);
    send(QEvent::MouseMove, line + 12, Qt::LeftButton);
    EXPECT_EQ(number(), moved) << "nothing is edited while it is dragged";
    send(QEvent::MouseButtonRelease, line + 12, Qt::NoButton);
    EXPECT_LT(number(), moved);
    pane.view()->condition()->undo();
    EXPECT_EQ(number(), moved);
}

}  // namespace
}  // namespace vigil::test
