#include "host/services/SystemClock.hpp"

#include <cmath>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace vigil {
namespace {

std::string text(LocalTime t) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d %02d:%02d:%02d", t.year, t.month, t.day, t.hour,
                  t.minute, t.second);
    return buffer;
}

/// Sets the process's zone for one test.
class Zone {
  public:
    explicit Zone(const char* name) {
        if (const char* before = std::getenv("TZ")) m_before = before;
        setenv("TZ", name, 1);
        tzset();
    }
    ~Zone() {
        if (m_before.empty())
            unsetenv("TZ");
        else
            setenv("TZ", m_before.c_str(), 1);
        tzset();
    }

  private:
    std::string m_before;
};

TEST(SystemClock, NowIsWhatTheMachineSays) {
    const auto before = static_cast<double>(std::time(nullptr));
    const double now = systemNow().secondsSinceUnix();
    EXPECT_GE(now, before - 1);
    EXPECT_LE(now, before + 60);
}

TEST(SystemClock, UtcTimeFollowsTheCalendar) {
    EXPECT_EQ(text(utcTime(Date(0))), "2001-01-01 00:00:00");
    EXPECT_EQ(text(utcTime(Date::distantPast())), "0001-01-01 00:00:00");
    EXPECT_EQ(text(utcTime(Date::fromUnix(-0.5))), "1969-12-31 23:59:59");
}

TEST(SystemClock, LocalTimeFollowsTheZoneThroughAChangeOfTheHour) {
    const Zone zone("CET-1CEST,M3.5.0,M10.5.0/3");
    // 2026-03-29 00:59:59 and 01:00:00 UTC: the hour from two to three is left out.
    EXPECT_EQ(text(systemLocalTime(Date::fromUnix(1774745999))), "2026-03-29 01:59:59");
    EXPECT_EQ(text(systemLocalTime(Date::fromUnix(1774746000))), "2026-03-29 03:00:00");
}

TEST(SystemClock, ADateThatNoYearHoldsIsAllZeros) {
    for (const double seconds : {std::numeric_limits<double>::infinity(), -1e300, 9.9e16,
                                 std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(text(utcTime(Date(seconds))), "0000-00-00 00:00:00") << seconds;
        EXPECT_EQ(text(systemLocalTime(Date(seconds))), "0000-00-00 00:00:00") << seconds;
    }
}

}  // namespace
}  // namespace vigil
