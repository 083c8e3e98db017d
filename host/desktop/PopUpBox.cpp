#include "host/desktop/PopUpBox.hpp"

#include <QHelpEvent>
#include <QStylePainter>
#include <QToolTip>
#include <QWheelEvent>
#include <algorithm>

namespace vigil {

PopUpBox::PopUpBox(QWidget* parent) : QComboBox(parent) {
    setFocusPolicy(Qt::StrongFocus);
}

void PopUpBox::setOtherwise(const QString& words) {
    if (words == m_otherwise) return;
    m_otherwise = words;
    setAccessibleDescription(words.isEmpty() ? accessibleName()
                                             : accessibleName() + QStringLiteral(": ") + words);
    update();
}

void PopUpBox::setSmallest(int letters) {
    m_smallest = letters;
    setSizeAdjustPolicy(AdjustToContents);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

// The style reckons its own frame and not that of the style sheet, which large letters tell.
QSize PopUpBox::sizeHint() const {
    const QSize hint = QComboBox::sizeHint();
    return {hint.width() + fontMetrics().averageCharWidth(), hint.height()};
}

QSize PopUpBox::minimumSizeHint() const {
    const QSize whole = QComboBox::minimumSizeHint();
    if (m_smallest == 0) return whole;
    constexpr int kFrameAndArrow = 44;
    return {std::min(whole.width(), m_smallest * fontMetrics().averageCharWidth() + kFrameAndArrow),
            whole.height()};
}

void PopUpBox::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    QStyleOptionComboBox option;
    initStyleOption(&option);
    if (currentIndex() < 0) option.currentText = m_otherwise;
    const QRect box =
        style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    option.currentText = fontMetrics().elidedText(option.currentText, Qt::ElideRight, box.width() - 2);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

void PopUpBox::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

bool PopUpBox::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QComboBox::event(event);
    const QString words = currentIndex() < 0 ? m_otherwise : currentText();
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), words, this);
    return true;
}

}  // namespace vigil
