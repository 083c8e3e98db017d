#pragma once

#include <QComboBox>
#include <QLineEdit>
#include <QTest>
#include <QToolButton>

// What tests of views share: a hand at the mouse and at the keyboard.

namespace vigil::test {

template <class Widget>
Widget* child(QWidget& of, const char* name) {
    return of.findChild<Widget*>(QString::fromLatin1(name));
}

inline void press(QWidget& of, const char* name) {
    QTest::mouseClick(child<QToolButton>(of, name), Qt::LeftButton);
}

/// Chooses by keys, as a closed pop-up takes them.
inline void choose(QComboBox& box, int index) {
    box.setFocus();
    while (box.currentIndex() != index) {
        const int before = box.currentIndex();
        QTest::keyClick(&box, before < index ? Qt::Key_Down : Qt::Key_Up);
        if (box.currentIndex() == before) return;
    }
}

inline void retype(QLineEdit& field, const QString& text) {
    field.setFocus();
    field.selectAll();
    QTest::keyClicks(&field, text);
}

}  // namespace vigil::test
