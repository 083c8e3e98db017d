#pragma once

#include <QComboBox>
#include <QLabel>
#include <QString>
#include <QToolButton>

namespace vigil {

/// A small button that shows a picture alone; its name is for screen readers and the tool tip.
QToolButton* bareButton(const QString& iconName, const QString& name, QWidget* parent);
/// One with a picture and words.
QToolButton* wordButton(const QString& iconName, const QString& words, QWidget* parent);
/// Names a pop-up for screen readers: here they read what it shows as its name, so the name is its
/// description.
void nameBox(QComboBox& box, const QString& name);
/// A label of the style sheet's role ("muted", "title", "section", "error").
QLabel* label(const QString& text, const char* role, QWidget* parent);
/// Sets a property that the style sheet looks at, and lets it look again.
void restyle(QWidget& widget, const char* property, const QVariant& value);

}  // namespace vigil
