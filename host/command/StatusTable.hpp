#pragma once

#include <string>

#include "host/run/SiteStatus.hpp"

namespace vigil {

/// The status for a terminal: what is wrong, then each station with the age of its data and its monitors in
/// words. Columns are as wide as they need; nothing is cut. Marks stand beside colours, never colours alone.
std::string statusTable(const SiteStatus& status, bool colour);

}  // namespace vigil
