#include <cmath>
#include <ctime>
#include <optional>

#include "host/feeds/wire/MakeDecoder.hpp"

namespace vigil {
namespace {

/// The farthest that the C library's calendar is asked about: the years 1 to 9999.
constexpr double kEarliest = -62135596800;
constexpr double kLatest = 253402300799;

bool showsTheSame(std::time_t instant, const std::tm& wanted) {
    std::tm shown{};
    return ::localtime_r(&instant, &shown) && shown.tm_year == wanted.tm_year &&
           shown.tm_yday == wanted.tm_yday && shown.tm_hour == wanted.tm_hour &&
           shown.tm_min == wanted.tm_min && shown.tm_sec == wanted.tm_sec;
}

}  // namespace

Date hostLocalTime(Date wallClock, Date near) {
    const double seconds = std::floor(wallClock.secondsSinceUnix());
    if (!(seconds >= kEarliest && seconds <= kLatest)) return wallClock;
    const auto asUtc = static_cast<std::time_t>(seconds);
    std::tm wanted{};
    if (!::gmtime_r(&asUtc, &wanted)) return wallClock;
    const double fraction = wallClock.secondsSinceUnix() - seconds;
    std::optional<Date> nearest;
    for (const int isSummer : {0, 1}) {
        std::tm parts = wanted;
        parts.tm_isdst = isSummer;
        const std::time_t instant = ::mktime(&parts);
        if (!showsTheSame(instant, wanted)) continue;
        const Date date = Date::fromUnix(static_cast<double>(instant) + fraction);
        if (!nearest || std::abs(date.secondsSince(near)) < std::abs(nearest->secondsSince(near)))
            nearest = date;
    }
    if (nearest) return *nearest;
    // An hour that the zone leaves out: as if its clocks had not been moved yet.
    std::tm parts = wanted;
    parts.tm_isdst = 0;
    return Date::fromUnix(static_cast<double>(::mktime(&parts)) + fraction);
}

}  // namespace vigil
