#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace vigil {

inline constexpr std::size_t kSpokenCharacters = 1000;  ///< of a text; the rest is not spoken

/// A text as it is given to the program that speaks.
struct SpokenText {
    std::string text{};       ///< UTF-8 without control characters; empty: there is nothing to say
    std::size_t leftOut = 0;  ///< characters behind the bound
};

/// Makes a text safe to speak: bytes that are no UTF-8 and control characters become blanks, blanks at both
/// ends go, and so does what is behind the bound. "[[", by which the program would take phonemes instead of
/// text, is kept apart by a blank. Any thread.
SpokenText spokenText(const std::optional<std::string>& text);

}  // namespace vigil
