#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/Date.hpp"
#include "platform/World.hpp"

// Where the ticks of an axis stand. Any thread.

namespace vigil {

struct ValueTick {
    double value = 0;
    std::string label;
};

/// A value axis that begins and ends at ticks, which stand at 1, 2 or 5 times a power of ten.
struct ValueScale {
    double low = 0, high = 1;
    std::vector<ValueTick> ticks{};

    /// `low` to `high` shown whole, with about `wanted` steps; equal ones and no numbers at all give a scale
    /// all the same.
    static ValueScale around(double low, double high, double wanted = 5);
    double share(double value) const { return (value - low) / (high - low); }
};

struct TimeTick {
    Date time;
    std::string label;    ///< "10:30", "21 Nov", "2027"
    bool newDay = false;  ///< begins a day on an axis of hours, a year on one of months
};

using LocalZone = std::function<LocalTime(Date)>;

/// At most `most` ticks at round times of day of the zone, days, weeks or months. None where the range is
/// empty or not finite.
std::vector<TimeTick> timeTicks(Date since, Date until, std::size_t most, const LocalZone& zone);

/// "UTC", "UTC+01:00": what the zone's clocks show at that time.
std::string zoneText(Date time, const LocalZone& zone);
/// "21 Nov 2026 10:34"
std::string localText(Date time, const LocalZone& zone);

}  // namespace vigil
