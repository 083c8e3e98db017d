#include "platform/Date.hpp"

#include <chrono>
#include <cmath>
#include <cstdio>

namespace vigil {
namespace {

// Years of at most nine digits either side; beyond them a double no longer tells seconds apart anyway.
constexpr double kCalendarReach = 3.0e16;

struct Civil {
    long long year;
    unsigned month, day;
    int hour, minute, second;
};

long long floorDivide(long long a, long long b) {
    return a / b - (a % b < 0 ? 1 : 0);
}

// The civil calendar from a day count, by shifting the year to start in March so that the leap day is last.
Civil civil(long long secondsSinceUnix) {
    const long long days = floorDivide(secondsSinceUnix, 86400);
    const int rest = static_cast<int>(secondsSinceUnix - days * 86400);
    const long long shifted = days + 719468;  // from 1970-01-01 to 0000-03-01
    const long long era = floorDivide(shifted, 146097);
    const auto dayOfEra = static_cast<unsigned>(shifted - era * 146097);
    const unsigned yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const unsigned monthFromMarch = (5 * dayOfYear + 2) / 153;
    const unsigned day = dayOfYear - (153 * monthFromMarch + 2) / 5 + 1;
    const unsigned month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
    const long long year = static_cast<long long>(yearOfEra) + era * 400 + (month <= 2 ? 1 : 0);
    return {year, month, day, rest / 3600, rest / 60 % 60, rest % 60};
}

void appendSeconds(std::string& to, double seconds) {
    char text[80];
    std::snprintf(text, sizeof text, "%.17g seconds since 2001-01-01 00:00:00 +0000", seconds);
    to += text;
}

}  // namespace

void Date::appendDescription(std::string& to) const {
    if (!(std::abs(m_seconds) < kCalendarReach)) return appendSeconds(to, m_seconds);
    const Civil c =
        civil(static_cast<long long>(std::floor(m_seconds)) + static_cast<long long>(kUnixOffset));
    char text[80];
    const int length = std::snprintf(text, sizeof text, "%04lld-%02u-%02u %02d:%02d:%02d +0000", c.year,
                                     c.month, c.day, c.hour, c.minute, c.second);
    to.append(text, static_cast<std::size_t>(length));
}

std::string Date::description() const {
    std::string text;
    appendDescription(text);
    return text;
}

std::string Date::isoText(int fractionDigits) const {
    std::string text;
    if (!(std::abs(m_seconds) < kCalendarReach)) {
        appendSeconds(text, m_seconds);
        return text;
    }
    double whole = std::floor(m_seconds);
    const double scale = std::pow(10.0, fractionDigits);
    double fraction = std::round((m_seconds - whole) * scale);
    if (fractionDigits == 0) fraction = 0;
    if (fraction >= scale && fractionDigits > 0) {
        whole += 1;
        fraction = 0;
    }
    const Civil c = civil(static_cast<long long>(whole) + static_cast<long long>(kUnixOffset));
    char buffer[80];
    std::snprintf(buffer, sizeof buffer, "%04lld-%02u-%02uT%02d:%02d:%02d", c.year, c.month, c.day, c.hour,
                  c.minute, c.second);
    text = buffer;
    if (fractionDigits > 0) {
        std::snprintf(buffer, sizeof buffer, ".%0*lld", fractionDigits, static_cast<long long>(fraction));
        text += buffer;
    }
    return text + "Z";
}

}  // namespace vigil
