#include <cstdio>

#include "host/settings/SettingsTable.hpp"

// Keys and values as texts.

namespace vigil {
namespace {

template <class... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

std::string quoted(std::string_view text) {
    std::string out = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            (out += '\\') += c;
        } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04X", static_cast<unsigned char>(c));
            out += escape;
        } else {
            out += c;
        }
    }
    return out + '"';
}

std::string inWords(const std::vector<std::string_view>& choices) {
    std::string text;
    for (std::size_t i = 0; i < choices.size(); ++i) {
        if (i > 0) text += i + 1 == choices.size() ? " or " : ", ";
        text += quoted(choices[i]);
    }
    return text;
}

}  // namespace

std::string settingPath(const SettingRow& row) {
    return std::string(row.section) + "." + std::string(row.key);
}

std::string settingExpected(const SettingRow& row) {
    switch (row.kind) {
        case SettingRow::Kind::Flag:
            return "true or false";
        case SettingRow::Kind::Number:
            return "a whole number from " + std::to_string(row.least) + " to " + std::to_string(row.most);
        case SettingRow::Kind::Choice:
            return inWords(row.choices);
        case SettingRow::Kind::Text:
            return "a text";
        case SettingRow::Kind::Program:
            return "a program's name or path";
        case SettingRow::Kind::Path:
            return "a path";
        case SettingRow::Kind::Host:
            return "a host's name or address";
        case SettingRow::Kind::Address:
            return "an e-mail address";
        case SettingRow::Kind::Name:
            return "the name of a secret";
        case SettingRow::Kind::Words:
            return "a list of texts";
    }
    return {};
}

std::string settingText(const SettingValue& value) {
    return std::visit(Overloaded{
                          [](std::monostate) { return std::string(); },
                          [](bool flag) { return std::string(flag ? "true" : "false"); },
                          [](long number) { return std::to_string(number); },
                          [](const std::string& text) { return quoted(text); },
                          [](const std::vector<std::string>& words) {
                              std::string text = "[";
                              for (const std::string& word : words)
                                  text += (text.size() > 1 ? ", " : "") + quoted(word);
                              return text + "]";
                          },
                      },
                      value);
}

bool isSet(const SettingValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return !text->empty();
    if (const auto* words = std::get_if<std::vector<std::string>>(&value)) return !words->empty();
    return !std::holds_alternative<std::monostate>(value);
}

}  // namespace vigil
