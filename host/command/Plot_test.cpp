#include "host/command/Plot.hpp"

#include <algorithm>
#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/command/PlotPath.hpp"
#include "host/command/PlotScale.hpp"
#include "host/command/Svg.hpp"
#include "host/services/SystemClock.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

const Date kMidnight = parseDate("2026-11-21").value();

std::vector<std::string> labels(const std::vector<ValueTick>& ticks) {
    std::vector<std::string> all;
    for (const auto& tick : ticks)
        all.push_back(tick.label);
    return all;
}

std::vector<std::string> labels(const std::vector<TimeTick>& ticks) {
    std::vector<std::string> all;
    for (const auto& tick : ticks)
        all.push_back((tick.newDay ? "*" : "") + tick.label);
    return all;
}

/// Winter time until 02:00 of the day, then an hour ahead.
LocalTime changing(Date date) {
    return utcTime(date.plus(date < kMidnight.plus(2 * 3600) ? 0 : 3600));
}

TEST(PlotScale, EndsAtRoundValues) {
    EXPECT_THAT(labels(ValueScale::around(-3.2, 4.6).ticks), ElementsAre("-4", "-2", "0", "2", "4", "6"));
    EXPECT_THAT(labels(ValueScale::around(1022.1, 1022.9).ticks),
                ElementsAre("1022.0", "1022.2", "1022.4", "1022.6", "1022.8", "1023.0"));
    EXPECT_THAT(labels(ValueScale::around(0, 100).ticks), ElementsAre("0", "20", "40", "60", "80", "100"));
}

TEST(PlotScale, HasAScaleForWhatHasNone) {
    for (const auto& [low, high] : {std::pair{5.0, 5.0},
                                    {0.0, 0.0},
                                    {INFINITY, -INFINITY},
                                    {1e300, 1e300},
                                    {1e15, 1e15 + 1},
                                    {-1e-300, 1e-300}}) {
        const auto scale = ValueScale::around(low, high);
        EXPECT_LT(scale.low, scale.high) << low;
        EXPECT_GE(scale.ticks.size(), 2U) << low;
        EXPECT_LE(scale.ticks.size(), 9U) << low;
    }
}

TEST(PlotScale, PutsTicksAtRoundTimes) {
    EXPECT_THAT(labels(timeTicks(kMidnight.plus(-5 * 3600), kMidnight.plus(7 * 3600), 9, utcTime)),
                ElementsAre("20:00", "22:00", "*21 Nov", "02:00", "04:00", "06:00"));
    EXPECT_THAT(labels(timeTicks(kMidnight, kMidnight.plus(20), 9, utcTime)),
                ElementsAre("*21 Nov", "00:00:05", "00:00:10", "00:00:15", "00:00:20"));
    EXPECT_THAT(labels(timeTicks(kMidnight, kMidnight.plus(30 * 86400), 9, utcTime)),
                ElementsAre("23 Nov", "30 Nov", "7 Dec", "14 Dec", "21 Dec"));
    EXPECT_THAT(labels(timeTicks(kMidnight, kMidnight.plus(200 * 86400), 9, utcTime)),
                ElementsAre("Dec", "*2027", "Feb", "Mar", "Apr", "May", "Jun"));
    EXPECT_TRUE(timeTicks(kMidnight, kMidnight, 9, utcTime).empty());
}

TEST(PlotScale, FollowsAChangeOfTheClocks) {
    const auto ticks = timeTicks(kMidnight, kMidnight.plus(6 * 3600), 9, changing);
    EXPECT_THAT(labels(ticks), ElementsAre("*21 Nov", "01:00", "03:00", "04:00", "05:00", "06:00", "07:00"));
    EXPECT_EQ(ticks[2].time, kMidnight.plus(2 * 3600));
    EXPECT_EQ(zoneText(kMidnight, changing), "UTC");
    EXPECT_EQ(zoneText(kMidnight.plus(5 * 3600), changing), "UTC+01:00");
}

std::string pathOf(const std::vector<PlotPoint>& points, double longest = 0) {
    std::string path;
    appendPath(
        path, points, longest, [](Date time) { return time.secondsSinceReference(); },
        [](double value) { return value; });
    return path;
}

TEST(PlotPath, KeepsTheEndsAndTheExtremesOfAPixel) {
    std::vector<PlotPoint> points;
    for (int i = 0; i < 100; ++i)
        points.push_back({Date(i / 100.0), i == 40 ? 9.0 : i == 70 ? -9.0 : 1.0});
    points.push_back({Date(1.5), 2});
    EXPECT_EQ(pathOf(points), "M0.0 1.0L0.4 9.0L0.7 -9.0L1.0 1.0L1.5 2.0");
}

TEST(PlotPath, InterruptsTheLineWhereDataIsMissing) {
    EXPECT_EQ(pathOf({{Date(0), 1}, {Date(1), 2}, {Date(9), 3}, {Date(10), 4}}, 3),
              "M0.0 1.0L1.0 2.0M9.0 3.0L10.0 4.0");
    EXPECT_EQ(pathOf({{Date(0), 1}, {Date(1), NAN}, {Date(2), 3}}), "M0.0 1.0h0.1M2.0 3.0h0.1");
    EXPECT_EQ(usualStep({{Date(0), 0}, {Date(5), 0}, {Date(10), 0}, {Date(100), 0}}), 5);
}

TEST(Svg, EscapesEverythingThatIsNoPlainText) {
    EXPECT_EQ(xmlText("a<b>&\"c\""), "a&lt;b&gt;&amp;&quot;c&quot;");
    EXPECT_EQ(xmlText("°C …"), "°C …");
    EXPECT_EQ(xmlText(std::string("\x01\0", 2)), "\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(xmlText("\xFFz\xC3"), "\xEF\xBF\xBDz\xEF\xBF\xBD");
    EXPECT_EQ(xmlText("\xED\xA0\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(xmlText("\xEF\xBF\xBE"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(characters("°C …"), 4U);
    EXPECT_EQ(shortened("°°°°", 3), "°°°…");
    EXPECT_EQ(shortened("°°°", 3), "°°°");
}

Plot month() {
    Plot plot{.title = "Frost <\"&",
              .subtitle = "Roof",
              .since = kMidnight,
              .until = kMidnight.plus(30 * 86400),
              .ofMonitor = true,
              .zone = utcTime};
    PlotSeries series{.key = "t", .name = "Temperature </text>", .unit = "°C"};
    for (int i = 0; i < 30 * 1440; ++i) {
        series.points.push_back({kMidnight.plus(i * 60), 5 * std::sin(i / 229.0) + i % 7});
        if (i % 3 == 0) plot.held.push_back({kMidnight.plus(i * 60), kMidnight.plus(i * 60 + 60)});
        if (i % 5 == 0) plot.fires.push_back(kMidnight.plus(i * 60));
        if (i % 5 == 0) plot.waits.push_back({kMidnight.plus(i * 60), kMidnight.plus(i * 60 + 120)});
    }
    series.thresholds = {{0, "< 0 °C"}};
    plot.series.push_back(std::move(series));
    return plot;
}

TEST(Plot, OfAMonthOfMinutesIsSmall) {
    const std::string svg = plotSvg(month());
    EXPECT_LT(svg.size(), 250000U);
    EXPECT_GT(svg.size(), 20000U);
}

TEST(Plot, LetsNoTextBreakOut) {
    const std::string svg = plotSvg(month());
    EXPECT_THAT(svg, HasSubstr("Frost &lt;&quot;&amp;"));
    EXPECT_THAT(svg, HasSubstr("Temperature &lt;/text&gt;"));
    EXPECT_THAT(svg, Not(HasSubstr("Temperature </text>")));
}

TEST(Plot, DrawsWhatHasNothingToShow) {
    const Plot empty{
        .title = "Nothing", .subtitle = "", .since = kMidnight, .until = kMidnight, .zone = utcTime};
    EXPECT_THAT(plotSvg(empty), testing::EndsWith("</svg>\n"));
    Plot odd = month();
    odd.series[0].points = {{kMidnight, NAN}};
    odd.until = odd.since;
    EXPECT_THAT(plotSvg(odd), Not(HasSubstr("nan")));
}

}  // namespace
}  // namespace vigil
