#pragma once

#include "host/settings/SettingsFile.hpp"

namespace vigil {

/// Adds what does not go together to the problems: a method without what it needs.
void checkTogether(SettingsReading& reading);

}  // namespace vigil
