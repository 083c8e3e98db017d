#pragma once

#include <string>
#include <string_view>

namespace vigil {

/// Appends the text as a JSON string with its quotes. Bytes that are not UTF-8 become U+FFFD, since JSON
/// knows no other way.
void appendJsonText(std::string& to, std::string_view text);

}  // namespace vigil
