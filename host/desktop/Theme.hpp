#pragma once

#include <QApplication>
#include <QColor>
#include <QString>

namespace vigil {

/// The colours of the window. Main thread.
struct Theme {
    bool dark = false;
    QColor window, card, field, raised, border, text, muted;
    QColor accent, onAccent, accentSoft;
    QColor good, goodSoft, warn, warnSoft, bad, badSoft;
    QColor series[6];  ///< of lines in pictures
};

enum class Appearance { Auto, Light, Dark };

/// What is in use.
const Theme& theme();
/// Gives the application colours, letters and shapes.
void applyTheme(QApplication& application, Appearance appearance);
/// Where the user's choice is kept.
inline constexpr const char* kAppearanceKey = "appearance";
/// "auto", "light", "dark"
Appearance appearanceNamed(const QString& name);

}  // namespace vigil
