#include "host/services/SystemClock.hpp"

#include <cmath>
#include <ctime>

namespace vigil {
namespace {

constexpr double kFurthest = 1.0e17;  // seconds; beyond it no year fits, and a time_t soon overflows

template <class Convert>
LocalTime converted(Date date, Convert convert) {
    const double seconds = std::floor(date.secondsSinceUnix());
    if (!(std::abs(seconds) < kFurthest)) return {};
    const auto time = static_cast<std::time_t>(seconds);
    std::tm parts{};
    if (!convert(&time, &parts)) return {};
    return {parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec};
}

}  // namespace

Date systemNow() {
    std::timespec time{};
    clock_gettime(CLOCK_REALTIME, &time);
    // Taken to the origin before the fraction is added, so that no precision is lost on the way.
    const double whole = static_cast<double>(time.tv_sec) - Date::kUnixOffset;
    return Date(whole + static_cast<double>(time.tv_nsec) * 1e-9);
}

LocalTime systemLocalTime(Date date) {
    return converted(date, [](const std::time_t* time, std::tm* parts) { return localtime_r(time, parts); });
}

LocalTime utcTime(Date date) {
    return converted(date, [](const std::time_t* time, std::tm* parts) { return gmtime_r(time, parts); });
}

}  // namespace vigil
