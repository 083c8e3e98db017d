#include <algorithm>
#include <cctype>
#include <tuple>

#include <toml++/toml.h>

#include "host/settings/SettingsFile.hpp"
#include "host/settings/SettingsRules.hpp"
#include "host/settings/SettingsTable.hpp"
#include "host/settings/SettingsValues.hpp"
#include "host/words/NearestWord.hpp"

// The only file that sees the library.

namespace vigil {
namespace {

SettingPlace placeOf(const toml::source_region& region) {
    return {std::max(1u, static_cast<unsigned>(region.begin.line)),
            std::max(1u, static_cast<unsigned>(region.begin.column))};
}

/// What stands there, of a type that no row has.
std::string foundType(const toml::node& node) {
    switch (node.type()) {
        case toml::node_type::table:
            return "a section";
        case toml::node_type::array:
            return "a list of other things";
        case toml::node_type::floating_point:
            return "a number with a fraction";
        case toml::node_type::date:
        case toml::node_type::date_time:
            return "a date";
        case toml::node_type::time:
            return "a time of day";
        default:
            return "something else";
    }
}

/// Nothing for a type that no row has.
std::optional<SettingValue> valueOf(const toml::node& node) {
    if (const auto* flag = node.as_boolean()) return flag->get();
    if (const auto* number = node.as_integer()) return static_cast<long>(number->get());
    if (const auto* text = node.as_string()) return text->get();
    if (const auto* list = node.as_array()) {
        std::vector<std::string> words;
        for (const toml::node& each : *list) {
            if (!each.is_string()) return std::nullopt;
            words.push_back(each.as_string()->get());
        }
        return words;
    }
    return std::nullopt;
}

class Reader {
  public:
    Reader(const toml::table& root, SettingFolders folders) : m_root(root), m_folders(std::move(folders)) {}

    SettingsReading read() && {
        for (const auto& [name, node] : m_root)
            readSection(name, node);
        checkTogether(m_reading);
        std::stable_sort(
            m_reading.problems.begin(), m_reading.problems.end(), [](const auto& a, const auto& b) {
                return std::tie(a.place.line, a.place.column) < std::tie(b.place.line, b.place.column);
            });
        return std::move(m_reading);
    }

  private:
    void problem(const toml::source_region& where, std::string says) {
        m_reading.problems.push_back({placeOf(where), std::move(says)});
    }

    /// As a text of the file, so that nothing in a name can steer a terminal.
    static std::string shown(std::string_view name) {
        const std::string text = settingText(std::string(name));
        const bool bare = !name.empty() && std::all_of(name.begin(), name.end(), [](unsigned char c) {
            return c > 0x20 && c < 0x7f && c != '"' && c != '\\';
        });
        return bare ? std::string(name) : text;
    }

    void readSection(const toml::key& name, const toml::node& node) {
        std::vector<std::string> sections;
        for (const SettingRow& row : settingsTable())
            if (sections.empty() || sections.back() != row.section) sections.emplace_back(row.section);
        const std::string_view word = name.str();
        const bool known = std::find(sections.begin(), sections.end(), word) != sections.end();
        if (const toml::table* section = node.as_table(); section && known) {
            for (const auto& [key, value] : *section)
                readKey(std::string(word), key, value);
            return;
        }
        if (known)
            return problem(
                name.source(),
                shown(word) + ": expected a section [" + std::string(word) + "], found " +
                    (valueOf(node) && !node.is_array() ? settingText(*valueOf(node)) : foundType(node)));
        if (const std::string home = sectionWith(word); !home.empty() && !node.is_table())
            return problem(name.source(), shown(word) + ": belongs into the section [" + home + "]");
        const std::string near = nearestWord(word, sections);
        problem(name.source(), "[" + shown(word) + "]: there is no such section" +
                                   (near.empty() ? "" : "; did you mean [" + near + "]?"));
    }

    /// The first section that has such a key.
    static std::string sectionWith(std::string_view key) {
        for (const SettingRow& row : settingsTable())
            if (row.key == key) return std::string(row.section);
        return {};
    }

    void readKey(const std::string& section, const toml::key& key, const toml::node& node) {
        const std::string path = section + "." + shown(key.str());
        std::vector<std::string> keys;
        for (const SettingRow& row : settingsTable()) {
            if (row.section != section) continue;
            if (row.key == key.str()) return readValue(row, path, node);
            keys.emplace_back(row.key);
        }
        if (section == "mail" && (key.str() == "password" || key.str() == "passwd"))
            return problem(key.source(),
                           path +
                               ": a password never stands here; write it as a line NAME = "
                               "PASSWORD into the file of secrets, and the NAME as mail.secret");
        const std::string near = nearestWord(key.str(), keys);
        const std::string home = sectionWith(key.str());
        problem(key.source(), path + ": there is no such key" +
                                  (!near.empty()   ? "; did you mean \"" + near + "\"?"
                                   : !home.empty() ? "; it belongs into the section [" + home + "]"
                                                   : ""));
    }

    void readValue(const SettingRow& row, const std::string& path, const toml::node& node) {
        auto value = valueOf(node);
        const auto mistake = value ? settingMistake(row, *value) : expectedInstead(row, foundType(node));
        if (mistake) return problem(node.source(), path + ": " + *mistake);
        row.set(m_reading.settings, wholeSetting(row, std::move(*value), m_folders));
        m_reading.places[path] = placeOf(node.source());
    }

    const toml::table& m_root;
    const SettingFolders m_folders;
    SettingsReading m_reading;
};

/// For a line whose value is a text without its quotes, or without one of them; else empty.
std::string quotesNote(std::string_view text, unsigned line) {
    for (; line > 1 && !text.empty(); --line)
        text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1);
    text = text.substr(0, text.find('\n'));
    const std::size_t equals = text.find('=');
    const std::size_t begin =
        equals == std::string_view::npos ? equals : text.find_first_not_of(" \t\r", equals + 1);
    if (begin == std::string_view::npos) return {};
    const std::string_view value = text.substr(begin);
    const bool isOpen = value[0] == '"' && value.find('"', 1) == std::string_view::npos;
    const bool isBare = std::isalpha(static_cast<unsigned char>(value[0])) != 0 || value[0] == '/' ||
                        value[0] == '~' || static_cast<unsigned char>(value[0]) >= 0x80;
    return isOpen || isBare ? "; a text stands in quotes, as in voice = \"de\"" : "";
}

SettingsReading refused(SettingPlace place, std::string why) {
    SettingsReading reading;
    reading.problems.push_back({place, std::move(why)});
    return reading;
}

}  // namespace

SettingsReading parseSettings(std::string_view text, const std::string& folder, const std::string& home) {
    if (text.size() > kMostSettingsBytes)
        return refused({}, "settings have at most " + std::to_string(kMostSettingsBytes) + " bytes");
    if (std::count(text.begin(), text.end(), '.') > static_cast<std::ptrdiff_t>(kMostSettingsDots))
        return refused({}, "settings have at most " + std::to_string(kMostSettingsDots) + " dots");
    try {
        const toml::table root = toml::parse(text);
        return Reader(root, {folder, home}).read();
    } catch (const toml::parse_error& mistake) {
        const SettingPlace place = placeOf(mistake.source());
        // a text that is not closed is missed in the next line
        const std::string note = quotesNote(text, place.line);
        return refused(place, "cannot be read: " + std::string(mistake.description()) +
                                  (note.empty() && place.line > 1 ? quotesNote(text, place.line - 1) : note));
    }
}

}  // namespace vigil
