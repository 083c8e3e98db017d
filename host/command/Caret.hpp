#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vigil {

/// The line of `text` in which byte `offset` stands, and under it a caret and a tilde for each further
/// character of the `length` bytes:
///
///       windChill.unitValue << 10
///                           ^~
///
/// A long line is cut around the place. Characters that would move the caret are shown as blanks; bytes that
/// are not UTF-8 as U+FFFD. Each character counts as one column.
std::string caretText(std::string_view text, std::size_t offset, std::size_t length);

}  // namespace vigil
