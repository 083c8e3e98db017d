#pragma once

#include <string>

namespace vigil {

/// Puts the window's program, `vigil-window` in the program's folder, in the place of this one. Returns only
/// where that cannot be done, with the reason.
std::string openWindow(const std::string& programFolder);

}  // namespace vigil
