#pragma once

#include <functional>
#include <memory>

#include "host/feeds/FeedUrl.hpp"
#include "host/feeds/wire/Decoder.hpp"

namespace vigil {

/// Where a time on a wall clock stands on the time line. `wallClock` is the time as if it were UTC; of two
/// instants that show the same (an hour that comes twice) the one nearer to `near` is meant.
using WallClockZone = std::function<Date(Date wallClock, Date near)>;

/// By the zone of this process (TZ, else that of the machine). Any thread.
Date hostLocalTime(Date wallClock, Date near);

/// The decoder of a feed's messages. Where the URL does not say the form, each message is taken for what it
/// looks like: lines (it has `readings`), rtl433 (it has a `model`) or weewx. Every decoder also takes
/// messages with `ready` readings; their `route` is the station's name in the data. `localTime` is asked for
/// times that name no zone where the form means the sender's own.
std::unique_ptr<Decoder> makeDecoder(const FeedUrl& url, WallClockZone localTime = hostLocalTime);

}  // namespace vigil
