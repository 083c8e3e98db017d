#pragma once

#include <string>

#include "host/services/Player.hpp"
#include "host/services/automation/AutomationOptions.hpp"
#include "host/settings/Settings.hpp"

// What the services take, from what the user has set.

namespace vigil {

/// Sounds and speech.
Player::Options playerOptions(const Settings& settings, const std::string& programFolder);

/// Mail and short messages. Secrets come from the user's file, the clock is the machine's.
AutomationOptions automationOptions(const Settings& settings, const std::string& programFolder);

}  // namespace vigil
