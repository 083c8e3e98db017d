#pragma once

#include <string>
#include <string_view>

// Texts as roff wants them, so that they are shown as they were, also by programs that set type.

namespace vigil {

/// A text in running lines, broken where they get longer than others read easily. A hyphen between two
/// letters stays one, any other becomes the minus of the keyboard; what stands between backticks is set in
/// bold, without them; a first "." or "'" is no request.
std::string roffText(std::string_view text);

/// What people type or see typed: every character as it is on the keyboard.
std::string roffTyped(std::string_view text);

}  // namespace vigil
