#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vigil {

/// Appends a text for XML: markup escaped, characters that XML cannot hold and bytes that are no UTF-8 as
/// U+FFFD.
void appendXmlText(std::string& to, std::string_view text);
std::string xmlText(std::string_view text);

/// How many characters a text of UTF-8 has.
std::size_t characters(std::string_view text);

/// The text cut to so many characters, with "…" where something is missing.
std::string shortened(std::string_view text, std::size_t characters);

}  // namespace vigil
