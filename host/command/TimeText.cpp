#include "host/command/TimeText.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>

#include <fmt/format.h>

#include "host/feeds/TimeForms.hpp"

namespace vigil {
namespace {

struct Span {
    std::string_view name;
    double seconds;
};

constexpr double kMinute = 60, kHour = 3600, kDay = 86400, kWeek = 7 * kDay;
constexpr std::array<Span, 21> kSpans{
    {{"s", 1},         {"sec", 1},        {"second", 1},       {"seconds", 1},       {"m", kMinute},
     {"min", kMinute}, {"mins", kMinute}, {"minute", kMinute}, {"minutes", kMinute}, {"h", kHour},
     {"hour", kHour},  {"hours", kHour},  {"hr", kHour},       {"hrs", kHour},       {"d", kDay},
     {"day", kDay},    {"days", kDay},    {"w", kWeek},        {"week", kWeek},      {"weeks", kWeek},
     {"secs", 1}}};
/// Nobody has a history of a thousand years.
constexpr double kFarthest = 1000 * 365.25 * kDay;

std::string_view trimmed(std::string_view text) {
    const auto begin = text.find_first_not_of(' ');
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

/// "3 days", "1.5h": so many seconds.
std::optional<double> spanOf(std::string_view text) {
    double number = 0;
    const auto read =
        std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
    if (read.ec != std::errc() || !(number >= 0)) return std::nullopt;
    const auto unit = trimmed(text.substr(static_cast<std::size_t>(read.ptr - text.data())));
    for (const Span& span : kSpans)
        if (unit == span.name && number * span.seconds <= kFarthest) return number * span.seconds;
    return std::nullopt;
}

/// A calendar's time to which a zone could still be added.
bool hasNoZone(std::string_view text) {
    const std::string whole(text);
    return parseDate(whole + " +00:00") || parseDate(whole + " 00:00 +00:00");
}

/// Seconds by which the zone's clocks are ahead of UTC; 0 for times that they do not show.
double offsetAt(Date date, const TimeZone& zone) {
    const LocalTime time = zone(date);
    if (time.year == 0 && time.month == 0) return 0;
    const auto shown = parseDate(fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", time.year, time.month,
                                             time.day, time.hour, time.minute, time.second));
    return shown ? std::round(shown.value().secondsSince(Date(std::floor(date.secondsSinceReference())))) : 0;
}

/// When the zone's clocks show what `shown` says in UTC; an hour that they leave out counts as the one after.
Date ofClocks(Date shown, const TimeZone& zone) {
    const Date near = shown.plus(-offsetAt(shown, zone));
    return shown.plus(-offsetAt(near, zone));
}

}  // namespace

std::string timeForPeople(Date date, const TimeZone& zone) {
    const double offset = offsetAt(date, zone);
    std::string text = date.plus(offset).description();
    constexpr std::string_view kUtc = "+0000";
    if (!text.ends_with(kUtc)) return text;
    text.resize(text.size() - kUtc.size());
    const int minutes = static_cast<int>(std::abs(offset) / kMinute);
    return text + fmt::format("{}{:02}{:02}", offset < 0 ? '-' : '+', minutes / 60, minutes % 60);
}

Result<Date> timeFromUser(std::string_view given, Date now, const TimeZone& zone) {
    const std::string_view text = trimmed(given);
    if (text == "now") return now;
    constexpr std::string_view kAgo = " ago";
    std::optional<double> before;
    if (text.ends_with(kAgo)) before = spanOf(trimmed(text.substr(0, text.size() - kAgo.size())));
    if (text.starts_with('-')) before = spanOf(text.substr(1));
    if (before) return now.plus(-*before);
    if (const auto date = recordedTime(text); date && !text.starts_with('-'))
        return hasNoZone(text) ? ofClocks(date.value(), zone) : date.value();
    return Error{"\"" + std::string(given) +
                 "\" is not a time; expected one as in 2026-11-20, 2026-11-20T10:34, \"3 days ago\" or -3h"};
}

std::string ageText(double seconds) {
    seconds = std::max(seconds, 0.0);
    if (seconds < 120) return fmt::format("{:.0f} s", std::floor(seconds));
    if (seconds < 7200) return fmt::format("{:.0f} min", std::floor(seconds / 60));
    if (seconds < 172800) return fmt::format("{:.0f} h", std::floor(seconds / 3600));
    return fmt::format("{:.0f} d", std::floor(seconds / 86400));
}

}  // namespace vigil
