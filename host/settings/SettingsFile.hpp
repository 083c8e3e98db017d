#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "host/settings/Settings.hpp"
#include "platform/Result.hpp"

// Reads vigil.toml. Any thread.

namespace vigil {

/// Where something stands in the file; both count from 1, columns in characters.
struct SettingPlace {
    unsigned line = 1;
    unsigned column = 1;
};

/// What is wrong, and where: "speech.rate: expected a whole number from 80 to 450, found 700"
struct SettingsProblem {
    SettingPlace place;
    std::string says;
};

struct SettingsReading {
    /// Of the keys that are right; all others have their defaults. Not to be used while there are problems.
    Settings settings{};
    std::vector<SettingsProblem> problems{};  ///< in the order of the file
    /// Where each key's value stands, by its path as in "speech.rate"; keys that are not set do not occur.
    std::map<std::string, SettingPlace> places{};
    bool isThere = false;  ///< whether there is such a file at all
};

/// A file of settings is no longer, so that a wrong path costs no memory.
inline constexpr std::size_t kMostSettingsBytes = 64 * 1024;
/// Each dot of a key may open a table inside a table, and tables are taken apart from the inside: a bound for
/// the dots bounds that depth.
inline constexpr std::size_t kMostSettingsDots = 2000;
/// A text is no longer, in bytes.
inline constexpr std::size_t kLongestSetting = 1000;
inline constexpr std::size_t kMostSettingWords = 32;

/// "vigil/vigil.toml" in the user's folder for settings ($XDG_CONFIG_HOME, else ~/.config).
std::string defaultSettingsFile();

/// Reads the file; one that is not there is all defaults. An error where it is there and cannot be read.
Result<SettingsReading> readSettings(const std::string& path);

/// The same of a text. "~/" in a path means `home`, other relative paths begin in `folder`; both are without
/// a final "/".
SettingsReading parseSettings(std::string_view text, const std::string& folder, const std::string& home);

/// "PATH:3:8: speech.rate: expected …"
std::string problemText(const std::string& path, const SettingsProblem& problem);

}  // namespace vigil
