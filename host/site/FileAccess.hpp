#pragma once

#include <optional>
#include <string>

namespace vigil {

/// Why this process may not read a file, where it is a matter of rights: "FILE belongs to user vigil, mode
/// 600; run this as that user". The same of the folder above it where that one hides it. Nothing where it may
/// be read or is not there. Any thread.
std::optional<std::string> accessObstacle(const std::string& file);

}  // namespace vigil
