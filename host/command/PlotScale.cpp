#include "host/command/PlotScale.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>

#include <fmt/format.h>

namespace vigil {
namespace {

constexpr double kMinute = 60, kHour = 3600, kDay = 86400;
constexpr std::array<double, 20> kSteps{
    1,        2,           5,           10,           15,           30,
    kMinute,  2 * kMinute, 5 * kMinute, 10 * kMinute, 15 * kMinute, 30 * kMinute,
    kHour,    2 * kHour,   3 * kHour,   6 * kHour,    12 * kHour,   kDay,
    2 * kDay, 7 * kDay};
constexpr std::array<int, 6> kMonthSteps{1, 2, 3, 6, 12, 60};
constexpr double kDaysOfMonth = 30.4;
constexpr std::array kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                             "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
/// The first Monday of Unix time is its day 4; weeks begin there.
constexpr double kFirstMonday = 4 * kDay;

/// Seconds since 1970 as a clock of the zone counts them.
double localSeconds(const LocalTime& local) {
    using namespace std::chrono;
    const sys_days day{year(local.year) / local.month / local.day};
    return static_cast<double>(day.time_since_epoch().count()) * kDay + local.hour * kHour +
           local.minute * kMinute + local.second;
}

double offsetAt(Date time, const LocalZone& zone) {
    return localSeconds(zone(time)) - std::floor(time.secondsSinceUnix());
}

Date fromLocal(double seconds, const LocalZone& zone) {
    Date guess = Date::fromUnix(seconds);
    // Twice, since the first answer may lie on the other side of a change of the clocks.
    for (int i = 0; i < 2; ++i)
        guess = Date::fromUnix(seconds - offsetAt(guess, zone));
    return guess;
}

std::string dayLabel(const LocalTime& local) {
    return fmt::format("{} {}", local.day, kMonths.at(static_cast<std::size_t>(local.month - 1)));
}

std::vector<TimeTick> evenTicks(Date since, Date until, double step, const LocalZone& zone) {
    std::vector<TimeTick> ticks;
    const double shift = step == 7 * kDay ? kFirstMonday : 0;
    const double begin = since.secondsSinceUnix() + offsetAt(since, zone);
    for (double at = std::ceil((begin - shift) / step) * step + shift;; at += step) {
        const Date time = fromLocal(at, zone);
        if (time > until) return ticks;
        if (time < since || (!ticks.empty() && time <= ticks.back().time)) continue;
        const LocalTime local = zone(time);
        const bool midnight = local.hour == 0 && local.minute == 0 && local.second == 0;
        const bool day = step >= kDay || midnight;
        ticks.push_back({time,
                         day ? dayLabel(local)
                         : step < kMinute
                             ? fmt::format("{:02}:{:02}:{:02}", local.hour, local.minute, local.second)
                             : fmt::format("{:02}:{:02}", local.hour, local.minute),
                         step < kDay && midnight});
    }
}

std::vector<TimeTick> monthTicks(Date since, Date until, int step, const LocalZone& zone) {
    std::vector<TimeTick> ticks;
    int month = zone(since).year * 12 / step * step;
    for (;; month += step) {
        const LocalTime first{month / 12, month % 12 + 1, 1, 0, 0, 0};
        const Date time = fromLocal(localSeconds(first), zone);
        if (time > until) return ticks;
        if (time < since) continue;
        const bool year = first.month == 1;
        ticks.push_back(
            {time,
             year ? fmt::format("{}", first.year) : kMonths.at(static_cast<std::size_t>(first.month - 1)),
             year});
    }
}

}  // namespace

ValueScale ValueScale::around(double low, double high, double wanted) {
    if (!std::isfinite(low) || !std::isfinite(high) || low > high) low = 0, high = 1;
    if (!(high - low > std::max(std::abs(low), std::abs(high)) * 1e-9)) {
        const double half = low == 0 ? 1 : std::abs(low) * 0.05;
        low -= half, high += half;
    }
    const double rough = (high - low) / wanted;
    const double power = std::pow(10, std::floor(std::log10(rough)));
    const double lead = rough / power;
    const double step = power * (lead < 1.5 ? 1 : lead < 3.5 ? 2 : lead < 7.5 ? 5 : 10);
    ValueScale scale;
    scale.low = std::floor(low / step + 1e-9) * step;
    scale.high = std::ceil(high / step - 1e-9) * step;
    const int digits = std::max(0, static_cast<int>(-std::floor(std::log10(step) + 1e-9)));
    const bool plain = std::max(std::abs(low), std::abs(high)) < 1e9 && digits <= 9;
    const auto count = static_cast<int>(std::lround((scale.high - scale.low) / step));
    for (int i = 0; i <= count; ++i) {
        const double value = scale.low + i * step;
        const double shown = std::abs(value) < step * 1e-6 ? 0 : value;
        scale.ticks.push_back(
            {value, plain ? fmt::format("{:.{}f}", shown, digits) : fmt::format("{:.4g}", shown)});
    }
    return scale;
}

std::vector<TimeTick> timeTicks(Date since, Date until, std::size_t most, const LocalZone& zone) {
    const double length = until.secondsSince(since);
    if (!std::isfinite(length) || length <= 0 || most == 0) return {};
    const auto fits = [&](double step) { return length / step <= static_cast<double>(most); };
    for (const double step : kSteps)
        if (fits(step)) return evenTicks(since, until, step, zone);
    for (const int step : kMonthSteps)
        if (fits(step * kDaysOfMonth * kDay)) return monthTicks(since, until, step, zone);
    return {};
}

std::string zoneText(Date time, const LocalZone& zone) {
    const auto minutes = static_cast<int>(std::lround(offsetAt(time, zone) / kMinute));
    if (minutes == 0) return "UTC";
    return fmt::format("UTC{}{:02}:{:02}", minutes < 0 ? '-' : '+', std::abs(minutes) / 60,
                       std::abs(minutes) % 60);
}

std::string localText(Date time, const LocalZone& zone) {
    const LocalTime local = zone(time);
    if (local.month == 0) return time.description();
    return fmt::format("{} {} {:02}:{:02}", dayLabel(local), local.year, local.hour, local.minute);
}

}  // namespace vigil
