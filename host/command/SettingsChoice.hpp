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

/// The same, all defaults where something is wrong, and nothing told: for what only gives advice.
Settings settingsOrDefaults();

}  // namespace vigil
