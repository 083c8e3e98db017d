#include "host/command/TimeText.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vigil {
namespace {

const Date kNow = Date::fromUnix(1795257258);  // 2026-11-21 10:34:18 UTC

std::string read(std::string_view text) {
    const auto date = timeFromUser(text, kNow, utcTime);
    return date ? date.value().isoText() : date.error().message;
}

TEST(TimeText, ReadsCalendarTimes) {
    EXPECT_EQ(read("2026-11-20"), "2026-11-20T00:00:00Z");
    EXPECT_EQ(read("2026-11-20T10:34+01:00"), "2026-11-20T09:34:00Z");
    EXPECT_EQ(read(" 2026-11-20 10:34 "), "2026-11-20T10:34:00Z");
    EXPECT_EQ(read("1795257258"), "2026-11-21T10:34:18Z");
    EXPECT_EQ(read("now"), "2026-11-21T10:34:18Z");
}

/// Central European time, whose clocks go from 2 to 3 on 2026-03-29.
LocalTime central(Date date) {
    const bool summer = date >= Date::fromUnix(1774746000) && date < Date::fromUnix(1792890000);
    return utcTime(date.plus(summer ? 7200 : 3600));
}

std::string readThere(std::string_view text) {
    const auto date = timeFromUser(text, kNow, central);
    return date ? date.value().isoText() : date.error().message;
}

TEST(TimeText, TakesATimeWithoutAZoneByTheClocksOfTheMachine) {
    EXPECT_EQ(readThere("2026-11-20"), "2026-11-19T23:00:00Z");
    EXPECT_EQ(readThere("2026-07-01 10:34"), "2026-07-01T08:34:00Z");
    EXPECT_EQ(readThere("2026-07-01T10:34:05"), "2026-07-01T08:34:05Z");
    EXPECT_EQ(readThere("2026-07-01T10:34Z"), "2026-07-01T10:34:00Z");
    EXPECT_EQ(readThere("2026-07-01T10:34-03:00"), "2026-07-01T13:34:00Z");
    EXPECT_EQ(readThere("1795257258"), "2026-11-21T10:34:18Z");
    EXPECT_EQ(readThere("2026-03-29 01:59"), "2026-03-29T00:59:00Z");
    EXPECT_EQ(readThere("2026-03-29 03:00"), "2026-03-29T01:00:00Z");
    EXPECT_EQ(readThere("-3h"), "2026-11-21T07:34:18Z");
}

TEST(TimeText, ShowsATimeWithItsZone) {
    EXPECT_EQ(timeForPeople(kNow, central), "2026-11-21 11:34:18 +0100");
    EXPECT_EQ(timeForPeople(kNow.plus(0.75), utcTime), "2026-11-21 10:34:18 +0000");
    EXPECT_EQ(timeForPeople(kNow, [](Date date) { return utcTime(date.plus(-12600)); }),
              "2026-11-21 07:04:18 -0330");
}

TEST(TimeText, ReadsTimesBeforeNow) {
    EXPECT_EQ(read("3 days ago"), "2026-11-18T10:34:18Z");
    EXPECT_EQ(read("1 week ago"), "2026-11-14T10:34:18Z");
    EXPECT_EQ(read("-3h"), "2026-11-21T07:34:18Z");
    EXPECT_EQ(read("-90min"), "2026-11-21T09:04:18Z");
    EXPECT_EQ(read("-90m"), "2026-11-21T09:04:18Z");
    EXPECT_EQ(read("1.5 hours ago"), "2026-11-21T09:04:18Z");
    EXPECT_EQ(read("-18s"), "2026-11-21T10:34:00Z");
}

TEST(TimeText, SaysWhichFormsThereAre) {
    for (const char* text :
         {"", "yesterdai", "3 days", "-3", "-3 fortnights", "ago", "--3h", "-h", "3 days  since", "-nanh",
          "-infh", "20261120", "2026-02-30", "-1e300w", "-99999999w"})
        EXPECT_EQ(read(text), "\"" + std::string(text) +
                                  "\" is not a time; expected one as in 2026-11-20, 2026-11-20T10:34, "
                                  "\"3 days ago\" or -3h");
}

TEST(TimeText, TellsAnAgeInTheLargestUnitThatMakesSense) {
    EXPECT_EQ(ageText(-5), "0 s");
    EXPECT_EQ(ageText(119.9), "119 s");
    EXPECT_EQ(ageText(120), "2 min");
    EXPECT_EQ(ageText(7199), "119 min");
    EXPECT_EQ(ageText(7200), "2 h");
    EXPECT_EQ(ageText(172800), "2 d");
}

}  // namespace
}  // namespace vigil
