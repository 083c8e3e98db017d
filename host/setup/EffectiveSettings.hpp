#pragma once

#include "host/settings/Settings.hpp"

namespace vigil {

/// The settings with what they leave to the machine: the user's own site and scripts, the usual port.
Settings effective(Settings settings);

}  // namespace vigil
