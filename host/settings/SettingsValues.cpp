#include "host/settings/SettingsValues.hpp"

#include <algorithm>
#include <filesystem>

#include "host/settings/SettingsFile.hpp"
#include "host/words/Addresses.hpp"
#include "host/words/NearestWord.hpp"

namespace vigil {
namespace {

using Kind = SettingRow::Kind;
/// What is quoted of a mistaken text.
constexpr std::size_t kMostQuoted = 60;

bool isControl(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
}

bool isNameCharacter(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-' ||
           c == '_' || c == '.';
}

/// Letters, digits and punctuation of a name; other scripts as they are.
bool isHostCharacter(char c) {
    return isNameCharacter(c) || static_cast<unsigned char>(c) >= 0x80;
}

/// A name of the net, or an address, which may stand in brackets where it is one with colons.
bool isHost(const std::string& text) {
    if (text.find(':') == std::string::npos && !text.starts_with('['))
        return std::all_of(text.begin(), text.end(), isHostCharacter);
    const bool inBrackets = text.starts_with('[') && text.ends_with(']');
    return isIpv6Address(inBrackets ? text.substr(1, text.size() - 2) : text);
}

/// Where "mail.example.org:2525" was meant.
std::string portNote(const SettingRow& row, const std::string& text) {
    const std::size_t colon = text.rfind(':');
    const bool isPort = colon != std::string::npos && colon + 1 < text.size() &&
                        std::all_of(text.begin() + static_cast<std::ptrdiff_t>(colon) + 1, text.end(),
                                    [](char c) { return c >= '0' && c <= '9'; });
    return row.kind == Kind::Host && isPort && isHost(text.substr(0, colon))
               ? "; the port stands in mail.port"
               : "";
}

bool isRight(Kind kind, const std::string& text) {
    // An empty text is the same as none.
    if (text.empty()) return true;
    switch (kind) {
        case Kind::Host:
            return isHost(text);
        case Kind::Address:
            return isMailAddress(text);
        case Kind::Name:
            return std::all_of(text.begin(), text.end(), isNameCharacter);
        default:
            return true;
    }
}

std::string shortened(const std::string& text) {
    if (text.size() <= kMostQuoted) return settingText(text);
    std::size_t end = kMostQuoted;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return settingText(text.substr(0, end)) + "…";
}

std::string suggestion(const SettingRow& row, const std::string& found) {
    const std::string near = nearestWord(found, {row.choices.begin(), row.choices.end()});
    return near.empty() ? "" : "; did you mean \"" + near + "\"?";
}

std::optional<std::string> textMistake(const SettingRow& row, const std::string& text) {
    if (text.size() > kLongestSetting)
        return "a text has at most " + std::to_string(kLongestSetting) + " bytes, and this one " +
               std::to_string(text.size());
    if (std::any_of(text.begin(), text.end(), isControl))
        return "expected " + settingExpected(row) + " of one line without control characters, found " +
               shortened(text);
    if (row.kind == Kind::Choice &&
        std::find(row.choices.begin(), row.choices.end(), text) == row.choices.end())
        return expectedInstead(row, shortened(text)) + suggestion(row, text);
    if (!isRight(row.kind, text)) return expectedInstead(row, shortened(text)) + portNote(row, text);
    return std::nullopt;
}

std::optional<std::string> wordsMistake(const SettingRow& row, const std::vector<std::string>& words) {
    if (words.size() > kMostSettingWords)
        return "a list has at most " + std::to_string(kMostSettingWords) + " texts, and this one " +
               std::to_string(words.size());
    if (!words.empty() && words.front().empty())
        return "the list's first text is a program, and this one is empty";
    for (const std::string& word : words)
        if (auto mistake = textMistake(row, word)) return mistake;
    return std::nullopt;
}

std::string wholePath(const std::string& path, const SettingFolders& folders) {
    if (path.empty() || path.front() == '/') return path;
    if (path == "~" || path.starts_with("~/")) return folders.home + path.substr(1);
    return std::filesystem::path(folders.folder + "/" + path).lexically_normal().string();
}

/// A name without "/" is looked up in PATH when it is run.
std::string wholeProgram(const std::string& program, const SettingFolders& folders) {
    return program.find('/') == std::string::npos ? program : wholePath(program, folders);
}

}  // namespace

std::string expectedInstead(const SettingRow& row, const std::string& found) {
    return "expected " + settingExpected(row) + ", found " + found;
}

std::optional<std::string> settingMistake(const SettingRow& row, const SettingValue& value) {
    const std::optional<std::string> otherType = expectedInstead(row, settingText(value));
    if (row.kind == Kind::Flag) return std::holds_alternative<bool>(value) ? std::nullopt : otherType;
    if (row.kind == Kind::Number) {
        const long* number = std::get_if<long>(&value);
        return number && *number >= row.least && *number <= row.most ? std::nullopt : otherType;
    }
    if (row.kind == Kind::Words) {
        const auto* words = std::get_if<std::vector<std::string>>(&value);
        return words ? wordsMistake(row, *words) : otherType;
    }
    const auto* text = std::get_if<std::string>(&value);
    return text ? textMistake(row, *text) : otherType;
}

SettingValue wholeSetting(const SettingRow& row, SettingValue value, const SettingFolders& folders) {
    if (auto* text = std::get_if<std::string>(&value)) {
        if (row.kind == Kind::Path) *text = wholePath(*text, folders);
        if (row.kind == Kind::Program) *text = wholeProgram(*text, folders);
    }
    if (auto* words = std::get_if<std::vector<std::string>>(&value); words && !words->empty())
        words->front() = wholeProgram(words->front(), folders);
    return value;
}

}  // namespace vigil
