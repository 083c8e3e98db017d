#include "host/command/TimeText.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>

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

}  // namespace

Result<Date> timeFromUser(std::string_view given, Date now) {
    const std::string_view text = trimmed(given);
    if (text == "now") return now;
    constexpr std::string_view kAgo = " ago";
    std::optional<double> before;
    if (text.ends_with(kAgo)) before = spanOf(trimmed(text.substr(0, text.size() - kAgo.size())));
    if (text.starts_with('-')) before = spanOf(text.substr(1));
    if (before) return now.plus(-*before);
    if (const auto date = recordedTime(text); date && !text.starts_with('-')) return date.value();
    return Error{"\"" + std::string(given) +
                 "\" is not a time; expected one as in 2026-11-20, 2026-11-20T10:34, \"3 days ago\" or -3h"};
}

}  // namespace vigil
