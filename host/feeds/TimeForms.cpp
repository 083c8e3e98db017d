#include "host/feeds/TimeForms.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

namespace vigil {
namespace {

bool looksLikeDateWithoutDashes(std::string_view text) {
    const auto digit = [](char c) { return c >= '0' && c <= '9'; };
    return text.size() == 8 && std::all_of(text.begin(), text.end(), digit) &&
           (text.starts_with("19") || text.starts_with("20"));
}

}  // namespace

Result<Date> timeFromUnixSeconds(double seconds) {
    constexpr double kFarthest = 1e11;
    if (!std::isfinite(seconds) || std::abs(seconds) > kFarthest)
        return Error{"the time is no number of seconds since 1970 (milliseconds perhaps?)"};
    return Date::fromUnix(seconds);
}

Result<Date> recordedTime(std::string_view text) {
    double seconds = 0;
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, seconds, std::chars_format::fixed);
    if (text.empty() || read.ec != std::errc() || read.ptr != end) return parseDate(text);
    if (looksLikeDateWithoutDashes(text))
        return Error{"\"" + std::string(text) + "\" is not a time; expected dashes, as in 2026-11-21"};
    return timeFromUnixSeconds(seconds);
}

}  // namespace vigil
