#pragma once

#include <string_view>

#include "platform/Date.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// Seconds since 1970 as recorded data gives them; farther than 1e11 (what milliseconds look like) is an
/// error.
Result<Date> timeFromUnixSeconds(double seconds);

/// A time as recorded data writes it: every form of parseDate, or seconds since 1970 as a decimal number.
/// Eight digits that begin with 19 or 20 are refused: they are a date without its dashes, which as seconds
/// would silently be a day in 1970.
Result<Date> recordedTime(std::string_view text);

}  // namespace vigil
