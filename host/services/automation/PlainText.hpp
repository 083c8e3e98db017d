#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Texts as they may stand in a message. Pure functions, any thread.

namespace vigil {

/// UTF-8: each byte that belongs to no character becomes U+FFFD.
std::string mendedUtf8(std::string_view bytes);

/// One line of UTF-8: the same, and each control character (of both ranges, and the separators of lines and
/// paragraphs) becomes a blank, so that it can end no header and begin no command.
std::string plainLine(std::string_view bytes);

/// The same without blanks at its end and of at most `most` bytes: no character is cut in two.
std::string plainLine(std::string_view bytes, std::size_t most);

/// The same with the line ends kept: "\r\n" and "\r" become "\n", a tab stays.
std::string plainLines(std::string_view bytes);

}  // namespace vigil
