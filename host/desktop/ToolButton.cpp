#include "host/desktop/ToolButton.hpp"

#include <QStyle>
#include <QVariant>

#include "host/desktop/Icons.hpp"

namespace vigil {

QToolButton* bareButton(const QString& iconName, const QString& name, QWidget* parent) {
    auto* button = new QToolButton(parent);
    button->setIcon(icon(iconName));
    const int side = button->fontMetrics().height();
    button->setIconSize({side, side});
    button->setToolTip(name);
    button->setAccessibleName(name);
    button->setProperty("bare", true);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

QToolButton* wordButton(const QString& iconName, const QString& words, QWidget* parent) {
    auto* button = bareButton(iconName, words, parent);
    button->setText(words);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    return button;
}

void nameBox(QComboBox& box, const QString& name) {
    box.setAccessibleName(name);
    box.setAccessibleDescription(name);
}

QLabel* label(const QString& text, const char* role, QWidget* parent) {
    auto* made = new QLabel(text, parent);
    made->setProperty("role", QLatin1String(role));
    if (qstrcmp(role, "title") == 0) {
        QFont large = made->font();
        large.setPointSizeF(large.pointSizeF() * 1.5);
        made->setFont(large);
    }
    return made;
}

void restyle(QWidget& widget, const char* property, const QVariant& value) {
    if (widget.property(property) == value) return;
    widget.setProperty(property, value);
    widget.style()->unpolish(&widget);
    widget.style()->polish(&widget);
}

}  // namespace vigil
