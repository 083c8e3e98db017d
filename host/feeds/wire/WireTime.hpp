#pragma once

#include <optional>
#include <string_view>

#include "host/feeds/wire/MakeDecoder.hpp"
#include "platform/Date.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// A time as a sender wrote it: every form of parseDate, or seconds since 1970. One that names no zone is a
/// wall clock's where `localTime` is there, else UTC. Nothing where the text is no time of day at all but a
/// place in a recording ("@1.5s"), as receivers that read from files write. Any thread.
Result<std::optional<Date>> wireTime(std::string_view text, Date arrived, const WallClockZone& localTime);

}  // namespace vigil
