#pragma once

#include <optional>
#include <string>

namespace vigil {

/// Where this process may not use a file that is there, or one of the folders above it: whose it is, and what
/// to do: "it belongs to user vigil, mode 600; run this as that user". Nothing where it may, or where there
/// is no such file. Opens nothing. Any thread.
std::optional<std::string> notAllowed(const std::string& path, bool writing);

}  // namespace vigil
