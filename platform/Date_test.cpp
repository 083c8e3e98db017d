#include "platform/Date.hpp"

#include <limits>
#include <vector>

#include <gtest/gtest.h>

namespace vigil {
namespace {

struct Printed {
    double secondsSinceUnix;
    const char* text;
};

TEST(Date, PrintsInUtcByTheCalendar) {
    const std::vector<Printed> vectors = {
        {0, "1970-01-01 00:00:00 +0000"},
        {Date::kUnixOffset, "2001-01-01 00:00:00 +0000"},
        {1795257258, "2026-11-21 10:34:18 +0000"},
        {951782399, "2000-02-28 23:59:59 +0000"},
        {951782400, "2000-02-29 00:00:00 +0000"},
        {951868800, "2000-03-01 00:00:00 +0000"},
        {4107542399, "2100-02-28 23:59:59 +0000"},
        {4107542400, "2100-03-01 00:00:00 +0000"},
        {1709164800, "2024-02-29 00:00:00 +0000"},
        {1735689599, "2024-12-31 23:59:59 +0000"},
        {-1, "1969-12-31 23:59:59 +0000"},
        {-62135596801, "0000-12-31 23:59:59 +0000"},
        {253402300799, "9999-12-31 23:59:59 +0000"},
        {253402300800, "10000-01-01 00:00:00 +0000"},
    };
    for (const auto& [seconds, text] : vectors)
        EXPECT_EQ(Date::fromUnix(seconds).description(), text);
}

TEST(Date, TheDistantPastPrintsAsTheFirstDayOfYearOne) {
    EXPECT_EQ(Date::distantPast().description(), "0001-01-01 00:00:00 +0000");
}

TEST(Date, AFractionIsDroppedTowardThePast) {
    EXPECT_EQ(Date(0.999999).description(), "2001-01-01 00:00:00 +0000");
    EXPECT_EQ(Date(-0.25).description(), "2000-12-31 23:59:59 +0000");
}

TEST(Date, WhatNoCalendarHoldsPrintsAsItsSeconds) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(Date(infinity).description(), "inf seconds since 2001-01-01 00:00:00 +0000");
    EXPECT_EQ(Date(-infinity).description(), "-inf seconds since 2001-01-01 00:00:00 +0000");
    const std::string notANumber = Date(std::numeric_limits<double>::quiet_NaN()).description();
    EXPECT_EQ(notANumber, "nan seconds since 2001-01-01 00:00:00 +0000");
    EXPECT_EQ(Date(1e300).description(), "1.0000000000000001e+300 seconds since 2001-01-01 00:00:00 +0000");
    EXPECT_EQ(Date(3e16).description(), "30000000000000000 seconds since 2001-01-01 00:00:00 +0000");
    EXPECT_EQ(Date(2.99e16).description(), "947495282-05-09 19:33:20 +0000");
    EXPECT_EQ(Date(infinity).isoText(3), "inf seconds since 2001-01-01 00:00:00 +0000");
}

TEST(Date, IsoTextRoundsToItsDigitsAndCarries) {
    EXPECT_EQ(Date(0).isoText(), "2001-01-01T00:00:00Z");
    EXPECT_EQ(Date(0.25).isoText(3), "2001-01-01T00:00:00.250Z");
    EXPECT_EQ(Date(0.9996).isoText(3), "2001-01-01T00:00:01.000Z");
    EXPECT_EQ(Date(-0.5).isoText(1), "2000-12-31T23:59:59.5Z");
    EXPECT_EQ(Date(0.9).isoText(0), "2001-01-01T00:00:00Z");
    EXPECT_EQ(Date(0.000001).isoText(6), "2001-01-01T00:00:00.000001Z");
}

TEST(Date, CountsAndComparesInSeconds) {
    const Date date(100.5);
    EXPECT_EQ(date.plus(0.25).secondsSince(date), 0.25);
    EXPECT_LT(date, date.plus(1e-6));
    EXPECT_EQ(Date::fromUnix(date.secondsSinceUnix()), date);
    EXPECT_LT(Date::distantPast(), Date(-1e9));
}

}  // namespace
}  // namespace vigil
