#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Date.hpp"

namespace vigil {
namespace {

std::string isoOf(std::string_view text) {
    const auto date = parseDate(text);
    return date ? date.value().isoText(3) : "refused";
}

TEST(ParseDate, ReadsEveryFormThatItPromises) {
    const std::vector<std::pair<const char*, const char*>> vectors = {
        {"2026-11-21T10:34:18Z", "2026-11-21T10:34:18.000Z"},
        {"2026-11-21t10:34:18z", "2026-11-21T10:34:18.000Z"},
        {"2026-11-21 10:34:18", "2026-11-21T10:34:18.000Z"},
        {"2026-11-21  10:34", "2026-11-21T10:34:00.000Z"},
        {"2026-11-21T10:34:18.5+01:00", "2026-11-21T09:34:18.500Z"},
        {"2026-11-21T10:34:18,25", "2026-11-21T10:34:18.250Z"},
        {"2026-11-21 10:34:18 +0000", "2026-11-21T10:34:18.000Z"},
        {"2026-11-21T10:34:18-0530", "2026-11-21T16:04:18.000Z"},
        {"2026-11-21T10:34:18+01", "2026-11-21T09:34:18.000Z"},
        {"2026-11-21T00:00:00+01:00", "2026-11-20T23:00:00.000Z"},
        {"2026-11-21", "2026-11-21T00:00:00.000Z"},
        {"2026-11-21 ", "2026-11-21T00:00:00.000Z"},
        {"2026-11-21Z", "2026-11-21T00:00:00.000Z"},
        {" 2026-1-2 3:4:5 ", "2026-01-02T03:04:05.000Z"},
        {"2024-02-29", "2024-02-29T00:00:00.000Z"},
        {"0001-01-01 00:00:00 +0000", "0001-01-01T00:00:00.000Z"},
        {"2016-12-31T23:59:60Z", "2017-01-01T00:00:00.000Z"},
    };
    for (const auto& [text, iso] : vectors)
        EXPECT_EQ(isoOf(text), iso) << text;
}

TEST(ParseDate, RefusesWhatIsNoTime) {
    for (const char* text : {"",
                             " ",
                             "yesterday",
                             "2026",
                             "2026-11",
                             "2026-11-",
                             "2026-13-01",
                             "2026-00-01",
                             "2026-11-31",
                             "2025-02-29",
                             "2100-02-29",
                             "2026-11-00",
                             "2026-11-21T",
                             "2026-11-21T10",
                             "2026-11-21T10:",
                             "20261-1-1",
                             "2026-11-21T24:00:00",
                             "2026-11-21T10:60",
                             "2026-11-21T10:34:61",
                             "2026-11-21T10:34:18.",
                             "2026-11-21T10:34:18+",
                             "2026-11-21T10:34:18+1:",
                             "2026-11-21T10:34:18+24:00",
                             "2026-11-21T10:34:18+01:60",
                             "2026-11-21T10:34:18Zulu",
                             "2026-11-21T10:34:18 CET",
                             "21.11.2026",
                             "-2026-11-21",
                             "2026-11-21T10:34:18.5.5",
                             "2026/11/21"})
        EXPECT_EQ(isoOf(text), "refused") << text;
}

TEST(ParseDate, TheRefusalShowsTheTextCutShortAndAFormThatWouldDo) {
    EXPECT_EQ(parseDate("soon").error().message,
              "\"soon\" is not a time; expected a form like 2026-11-21T10:34:18Z");
    EXPECT_EQ(parseDate(std::string(1000, 'x')).error().message.size(),
              parseDate("").error().message.size() + 40);
}

TEST(ParseDate, WhatWasPrintedReadsBack) {
    for (const double seconds : {0.0, -1.0, 817641258.0, 1e9, -63113904000.0}) {
        const Date date(seconds);
        EXPECT_EQ(parseDate(date.description()).value(), date);
        EXPECT_EQ(parseDate(date.isoText()).value(), date);
    }
}

}  // namespace
}  // namespace vigil
