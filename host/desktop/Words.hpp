#pragma once

#include <QString>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Date.hpp"

// Texts between the kit and the window. Any thread.

namespace vigil {

inline QString qt(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}
inline std::string utf8(const QString& text) {
    return text.toStdString();
}

/// A text of the window in the user's language, where a translation is installed.
QString say(const char* english);

/// "now", "3 s", "5 min", "2 h", "4 d"; empty for what lies ahead by more than a few seconds.
QString ageText(double seconds);
/// "14:05:09" today, "Mon 14:05" this week, "2024-03-01 14:05" otherwise, in the user's zone.
QString momentText(Date when, Date now);
/// At most `places` decimals, without needless zeros: "12.3", "0.05", "1013".
QString numberWords(double value, int places = 2);

}  // namespace vigil
