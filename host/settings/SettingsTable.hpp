#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "host/settings/Settings.hpp"

// Every key that there is. The reader, the manual (docs/settings.md) and `vigil settings show` go by this
// table.

namespace vigil {

/// Nothing, for a key that is not set and has no default.
using SettingValue = std::variant<std::monostate, bool, long, std::string, std::vector<std::string>>;

struct SettingRow {
    enum class Kind {
        Flag,
        Number,   ///< whole, from `least` to `most`
        Choice,   ///< one of `choices`
        Text,     ///< any text of one line
        Program,  ///< a path, or a name that is looked up in PATH
        Path,
        Host,     ///< a host's name or address
        Address,  ///< an e-mail address
        Name,     ///< of a secret
        Words,    ///< a list of texts, of which the first is a program
    };
    std::string_view section;
    std::string_view key;
    Kind kind = Kind::Text;
    std::string_view says;         ///< what it is: a sentence
    std::string_view otherwise{};  ///< what holds while it is empty or not set
    long least = 0;
    long most = 0;
    std::vector<std::string_view> choices{};
    SettingValue (*get)(const Settings&) = nullptr;
    /// The value is of the kind of the row, and in its range.
    void (*set)(Settings&, const SettingValue&) = nullptr;
};

/// Rows of one section stand together.
const std::vector<SettingRow>& settingsTable();

/// "speech.rate"
std::string settingPath(const SettingRow& row);

/// What is expected of a value: "a whole number from 80 to 450"
std::string settingExpected(const SettingRow& row);

/// As one writes it in the file: `175`, `"espeak-ng"`, `true`, `["a", "b"]`; empty for nothing. Control
/// characters come out escaped.
std::string settingText(const SettingValue& value);

/// Whether there is anything: neither nothing nor an empty text or list.
bool isSet(const SettingValue& value);

}  // namespace vigil
