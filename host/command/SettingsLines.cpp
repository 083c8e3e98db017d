#include "host/command/SettingsLines.hpp"

#include <algorithm>
#include <variant>

#include <fmt/format.h>

#include "host/command/JsonText.hpp"
#include "host/command/SettingsChoice.hpp"
#include "host/settings/SettingsTable.hpp"

namespace vigil {
namespace {

/// In words where nothing is set, without the marks of the manual.
std::string shownValue(const SettingRow& row, const SettingValue& value) {
    if (isSet(value)) return settingText(value);
    std::string words(row.otherwise);
    words.erase(std::remove(words.begin(), words.end(), '`'), words.end());
    return words;
}

void appendJson(std::string& to, const SettingValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return appendJsonText(to, *text);
    const auto* words = std::get_if<std::vector<std::string>>(&value);
    if (!words) return static_cast<void>(to += settingText(value));
    to += '[';
    for (std::size_t i = 0; i < words->size(); ++i) {
        if (i > 0) to += ',';
        appendJsonText(to, (*words)[i]);
    }
    to += ']';
}

}  // namespace

std::string settingsTableLines(const std::string& file, const SettingsReading& reading) {
    const Settings settings = effective(reading.settings);
    std::string text = file + (reading.isThere ? "\n" : " (there is none)\n");
    std::string_view section;
    for (const SettingRow& row : settingsTable()) {
        if (row.section != section) text += fmt::format("[{}]\n", section = row.section);
        const auto place = reading.places.find(settingPath(row));
        text += fmt::format(
            "  {:<13} {:<8} {}\n", row.key,
            place == reading.places.end() ? "default" : "line " + std::to_string(place->second.line),
            shownValue(row, row.get(settings)));
    }
    return text;
}

std::string settingsJsonLines(const SettingsReading& reading) {
    const Settings settings = effective(reading.settings);
    std::string text;
    for (const SettingRow& row : settingsTable()) {
        const SettingValue value = row.get(settings);
        text += "{\"key\":\"" + settingPath(row) + "\",\"value\":";
        if (isSet(value))
            appendJson(text, value);
        else
            text += "null";
        const auto place = reading.places.find(settingPath(row));
        text += place == reading.places.end()
                    ? ",\"source\":\"default\"}\n"
                    : fmt::format(",\"source\":\"file\",\"line\":{},\"column\":{}}}\n", place->second.line,
                                  place->second.column);
    }
    return text;
}

std::string problemJsonLine(const std::string& file, const SettingsProblem& problem) {
    std::string line = "{\"file\":";
    appendJsonText(line, file);
    line += fmt::format(",\"line\":{},\"column\":{},\"says\":", problem.place.line, problem.place.column);
    appendJsonText(line, problem.says);
    return line + "}\n";
}

}  // namespace vigil
