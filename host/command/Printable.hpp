#pragma once

#include <string>
#include <string_view>

namespace vigil {

/// The text for a terminal: control characters of whoever wrote it are shown as "\x1b" and so on, line ends
/// as they are only where `lines` says so, so that no text from outside steers the terminal or feigns a line.
std::string printable(std::string_view text, bool lines = false);

}  // namespace vigil
