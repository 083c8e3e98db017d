#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/Result.hpp"

namespace vigil {

/// Bytes of a station's name or a monitor's title; longer ones break every table in which they stand.
inline constexpr std::size_t kLongestPeopleName = 256;

/// A name or title as it was typed, without blanks around it. `what` begins the errors: "a station's name".
/// Refuses characters that control a terminal or end a line, what is no UTF-8, and more than
/// `kLongestPeopleName` bytes. An empty one stays empty.
Result<std::string> nameFromUser(std::string_view what, std::string_view typed);

}  // namespace vigil
