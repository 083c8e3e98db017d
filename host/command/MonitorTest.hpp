#pragma once

#include <optional>
#include <string>

#include "host/command/OpenMonitor.hpp"
#include "host/command/Refusal.hpp"

namespace vigil {

/// Plays and speaks what the monitor would, by the user's settings, and waits until all of it has ended. What
/// cannot be heard is told. Main thread.
std::optional<Refusal> testMonitor(OpenMonitor& monitor, const std::string& title, CommandContext& context);

}  // namespace vigil
