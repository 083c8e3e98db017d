#pragma once

#include <string>

#include "host/run/SiteStatus.hpp"

namespace vigil {

/// The status for a terminal: what is wrong, then each station with the age of its data and its monitors in
/// words. Columns are as wide as they need; nothing is cut. Marks stand beside colours, never colours alone.
std::string statusTable(const SiteStatus& status, bool colour);

/// "12 s", "3 min", "2 h", "5 d"
std::string ageText(double seconds);

}  // namespace vigil
