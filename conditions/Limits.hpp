#pragma once

#include <cstddef>

namespace vigil {

/// The deepest nesting of parentheses that a text may have, and that the printed form of a condition may
/// need. Against texts of nothing but "(" that would exhaust the stack of whoever walks the tree.
inline constexpr std::size_t kMaxParenthesisDepth = 256;

/// The longest text of a condition, and the longest printed form, in bytes (1 MiB). Against archives and
/// uploads that hold no condition but a disk.
inline constexpr std::size_t kMaxTextBytes = std::size_t{1} << 20;

}  // namespace vigil
