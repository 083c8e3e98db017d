#include "host/desktop/Theme.hpp"

#include <QFile>
#include <QFontDatabase>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>

namespace vigil {
namespace {

Theme g_theme;  // main thread

Theme lightTheme() {
    return {.dark = false,
            .window = "#f4f6f9",
            .card = "#ffffff",
            .field = "#ffffff",
            .raised = "#eef1f6",
            .border = "#dbe0e8",
            .text = "#1b2330",
            .muted = "#5d6878",
            .accent = "#2457c5",
            .onAccent = "#ffffff",
            .accentSoft = "#e4ecfc",
            .good = "#13733c",
            .goodSoft = "#dff3e6",
            .warn = "#8a5300",
            .warnSoft = "#fdf0d8",
            .bad = "#b3261e",
            .badSoft = "#fbe4e2",
            .series = {"#2457c5", "#c2570c", "#0f766e", "#7c3aed", "#b91c5c", "#4d7c0f"}};
}

Theme darkTheme() {
    return {.dark = true,
            .window = "#14181f",
            .card = "#1c222c",
            .field = "#141920",
            .raised = "#262d39",
            .border = "#343d4b",
            .text = "#e8ecf2",
            .muted = "#9aa6b6",
            .accent = "#7ba5ff",
            .onAccent = "#0d1628",
            .accentSoft = "#24365c",
            .good = "#6fd695",
            .goodSoft = "#173a26",
            .warn = "#f3bd62",
            .warnSoft = "#42310f",
            .bad = "#ff8f86",
            .badSoft = "#4a201d",
            .series = {"#7ba5ff", "#f59e5b", "#4fd1c0", "#b794f6", "#f687b3", "#a3d65c"}};
}

QPalette paletteOf(const Theme& theme) {
    QPalette palette;
    palette.setColor(QPalette::Window, theme.window);
    palette.setColor(QPalette::WindowText, theme.text);
    palette.setColor(QPalette::Base, theme.field);
    palette.setColor(QPalette::AlternateBase, theme.raised);
    palette.setColor(QPalette::Text, theme.text);
    palette.setColor(QPalette::PlaceholderText, theme.muted);
    palette.setColor(QPalette::Button, theme.raised);
    palette.setColor(QPalette::ButtonText, theme.text);
    palette.setColor(QPalette::ToolTipBase, theme.card);
    palette.setColor(QPalette::ToolTipText, theme.text);
    palette.setColor(QPalette::Highlight, theme.accent);
    palette.setColor(QPalette::HighlightedText, theme.onAccent);
    palette.setColor(QPalette::Link, theme.accent);
    palette.setColor(QPalette::Mid, theme.border);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, theme.muted);
    return palette;
}

QString styleSheetOf(const Theme& theme) {
    QFile file(QStringLiteral(":/style/vigil.qss"));
    if (!file.open(QIODevice::ReadOnly)) return {};
    QString sheet = QString::fromUtf8(file.readAll());
    const std::pair<const char*, QColor> colours[] = {
        {"@window", theme.window},     {"@card", theme.card},
        {"@field", theme.field},       {"@raised", theme.raised},
        {"@border", theme.border},     {"@text", theme.text},
        {"@muted", theme.muted},       {"@accentSoft", theme.accentSoft},
        {"@accent", theme.accent},     {"@onAccent", theme.onAccent},
        {"@goodSoft", theme.goodSoft}, {"@good", theme.good},
        {"@warnSoft", theme.warnSoft}, {"@warn", theme.warn},
        {"@badSoft", theme.badSoft},   {"@bad", theme.bad}};
    for (const auto& [name, colour] : colours)
        sheet.replace(QLatin1String(name), colour.name());
    return sheet.replace(QLatin1String("@mode"), QLatin1String(theme.dark ? "dark" : "light"));
}

}  // namespace

const Theme& theme() {
    return g_theme;
}

Appearance appearanceNamed(const QString& name) {
    if (name == QLatin1String("light")) return Appearance::Light;
    return name == QLatin1String("dark") ? Appearance::Dark : Appearance::Auto;
}

void applyTheme(QApplication& application, Appearance appearance) {
    static const bool systemIsDark = application.palette().color(QPalette::Window).lightness() < 128;
    const bool dark = appearance == Appearance::Dark || (appearance == Appearance::Auto && systemIsDark);
    g_theme = dark ? darkTheme() : lightTheme();
    application.setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    application.setPalette(paletteOf(g_theme));
    QFont font = application.font();
    if (QFontDatabase::hasFamily(QStringLiteral("Inter"))) font.setFamily(QStringLiteral("Inter"));
    if (font.pointSizeF() < 10) font.setPointSizeF(10);
    font.setHintingPreference(QFont::PreferNoHinting);
    application.setFont(font);
    application.setStyleSheet(styleSheetOf(g_theme));
}

}  // namespace vigil
