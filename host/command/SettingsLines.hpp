#pragma once

#include <string>

#include "host/settings/SettingsFile.hpp"

// Settings as `vigil settings` prints them.

namespace vigil {

/// A line a key: its value in effect, and where that comes from.
std::string settingsTableLines(const std::string& file, const SettingsReading& reading);

/// The same, one JSON object a line.
std::string settingsJsonLines(const SettingsReading& reading);

/// {"file":…,"line":4,"column":1,"says":…}
std::string problemJsonLine(const std::string& file, const SettingsProblem& problem);

}  // namespace vigil
