#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "host/services/SystemClock.hpp"
#include "platform/Date.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// What the clocks of a zone show.
using TimeZone = std::function<LocalTime(Date)>;

/// A time as people type it:
///
/// - `2026-11-20`: that midnight; so every form that recorded data may have, local without a zone
/// - `2026-11-20T10:34+01:00`
/// - `3 days ago`, `90 min ago`: seconds, minutes, hours, days, weeks; fractions allowed
/// - `-3h`, `-90s`: the same; s, m or min, h, d, w
/// - `now`
///
/// An error quotes the text and shows the forms.
Result<Date> timeFromUser(std::string_view text, Date now, const TimeZone& zone = systemLocalTime);

/// A time as people read it: "2026-11-21 11:34:18 +0100", in the zone that it names.
std::string timeForPeople(Date date, const TimeZone& zone = systemLocalTime);

/// An age in the largest unit that makes sense, rounded down: "12 s", "3 min", "2 h", "5 d"; "0 s" below 0.
std::string ageText(double seconds);

}  // namespace vigil
