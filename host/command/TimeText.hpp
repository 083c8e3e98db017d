#pragma once

#include <string_view>

#include "platform/Date.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// A time as people type it:
///
///     2026-11-20                   that midnight; every form that recorded data may have, UTC without a zone
///     2026-11-20T10:34+01:00
///     3 days ago, 90 min ago       seconds, minutes, hours, days, weeks; fractions allowed
///     -3h, -90s                    the same: s, m or min, h, d, w
///     now
///
/// An error quotes the text and shows the forms.
Result<Date> timeFromUser(std::string_view text, Date now);

}  // namespace vigil
