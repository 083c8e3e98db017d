#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vigil {

// The language's own idea of letters and digits, whatever the locale.
constexpr bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
constexpr bool isWordCharacter(char c) {
    return isLetter(c) || isDigit(c) || c == '_';
}

/// How many bytes the character at the start of a non-empty text has; 1 for a byte that is no UTF-8.
std::size_t characterLength(std::string_view text);

/// That character in words for people: in quotes, "a line break", or "the byte 0x07" where it does not show.
std::string describeCharacter(std::string_view text);

}  // namespace vigil
