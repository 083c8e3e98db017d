#pragma once

#include <optional>
#include <string>

#include "host/command/CommandContext.hpp"
#include "host/settings/SettingsFile.hpp"
#include "host/setup/EffectiveSettings.hpp"

namespace vigil {

/// The user's settings as they are in the file now, all defaults where there is none. Nothing where the file
/// cannot be read or something in it is wrong; then that is told and the status set.
std::optional<Settings> settingsOf(CommandContext& context);

/// Is nothing wrong in what was read of `file`? What is wrong is told, and the status set.
bool isRight(const std::string& file, const SettingsReading& reading, CommandContext& context);

/// The user's settings, all defaults where something is wrong, and nothing told: for what only gives advice.
Settings settingsOrDefaults();

}  // namespace vigil
