#pragma once

#include <optional>
#include <string>

#include "host/settings/SettingsTable.hpp"

namespace vigil {

/// What relative paths begin with.
struct SettingFolders {
    std::string folder;
    std::string home;
};

/// Why the value is not one of the row's: "expected a path, found 3"; nothing where it is. One of another
/// type than the row's never is.
std::optional<std::string> settingMistake(const SettingRow& row, const SettingValue& value);

/// "expected a whole number from 80 to 450, found FOUND"
std::string expectedInstead(const SettingRow& row, const std::string& found);

/// The value with whole paths.
SettingValue wholeSetting(const SettingRow& row, SettingValue value, const SettingFolders& folders);

}  // namespace vigil
