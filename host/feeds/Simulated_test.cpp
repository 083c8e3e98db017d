#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/feeds/OpenRecorded.hpp"
#include "host/feeds/SimulatedWeather.hpp"
#include "host/readings/Derived.hpp"

namespace vigil {
namespace {

constexpr std::size_t kDayOfNotifications = 288;

std::vector<RecordedNotification> notifications(std::uint64_t seed, std::size_t count) {
    auto source = simulatedSource(seed, {.count = count});
    std::vector<RecordedNotification> given;
    while (auto next = source->next().value())
        given.push_back(*next);
    return given;
}

std::string printed(std::uint64_t seed, std::size_t count) {
    std::string text;
    for (const auto& one : notifications(seed, count))
        text += one.station + " " + one.time.isoText() + " " + one.readings->description() + "\n";
    return text;
}

double valueOf(const RecordedNotification& one, const char* key) {
    const AgentProperty* reading = one.readings->objectForKey(key);
    EXPECT_NE(reading, nullptr) << key;
    return reading ? reading->unitValue() : 0;
}

TEST(SimulatedStation, theSameSeedGivesTheSameBytesAndAnotherSeedOthers) {
    EXPECT_EQ(printed(1, kDayOfNotifications), printed(1, kDayOfNotifications));
    EXPECT_NE(printed(1, kDayOfNotifications), printed(2, kDayOfNotifications));
}

TEST(SimulatedStation, theRandomNumbersAreThePublishedOnes) {
    SplitMix random(1234567);
    EXPECT_EQ(random.next(), 6457827717110365317u);
    EXPECT_EQ(random.next(), 3203168211198807973u);
}

TEST(SimulatedStation, theDefaultConditionIsCrossedBothWaysWithinTenNotifications) {
    for (std::uint64_t seed = 0; seed < 200; ++seed) {
        const auto given = notifications(seed, 10);
        std::string verdicts;
        for (const auto& one : given) {
            const bool holds = valueOf(one, "windChill") < 10 || valueOf(one, "windSpeed") > 25;
            if (verdicts.empty() || (verdicts.back() == 'y') != holds) verdicts += holds ? 'y' : 'n';
        }
        EXPECT_TRUE(verdicts.starts_with("nyn")) << verdicts << " seed " << seed;
    }
}

TEST(SimulatedStation, windChillAndWindEachCrossTheirBoundWithinTenNotifications) {
    for (std::uint64_t seed = 0; seed < 200; ++seed) {
        std::string cold, windy;
        for (const auto& one : notifications(seed, 10)) {
            const bool isCold = valueOf(one, "windChill") < 10;
            const bool isWindy = valueOf(one, "windSpeed") > 25;
            if (cold.empty() || (cold.back() == 'y') != isCold) cold += isCold ? 'y' : 'n';
            if (windy.empty() || (windy.back() == 'y') != isWindy) windy += isWindy ? 'y' : 'n';
        }
        EXPECT_TRUE(cold.starts_with("nyn")) << cold << " seed " << seed;
        EXPECT_TRUE(windy.starts_with("nyn")) << windy << " seed " << seed;
    }
}

TEST(SimulatedStation, windIsHeldInMetresASecondAndShownInKilometresAnHour) {
    for (const auto& one : notifications(1, kDayOfNotifications)) {
        const AgentProperty* wind = one.readings->objectForKey("windSpeed");
        ASSERT_NE(wind, nullptr);
        EXPECT_NEAR(wind->unitValue(), wind->value() * 3.6, 0.05 + 1e-9);
        EXPECT_TRUE(wind->unitStringValueWithUnitShort().ends_with(" km/h"))
            << wind->unitStringValueWithUnitShort();
    }
}

TEST(SimulatedStation, readingsStayInTheRangeOfTheirKind) {
    for (const auto& one : notifications(7, 3 * kDayOfNotifications)) {
        EXPECT_GT(valueOf(one, "outsideTemp"), -10);
        EXPECT_LT(valueOf(one, "outsideTemp"), 25);
        EXPECT_GT(valueOf(one, "outsideHumidity"), 20);
        EXPECT_LE(valueOf(one, "outsideHumidity"), 99);
        EXPECT_LE(valueOf(one, "dewPoint"), valueOf(one, "outsideTemp"));
        EXPECT_LE(valueOf(one, "windChill"), valueOf(one, "outsideTemp"));
        EXPECT_GE(valueOf(one, "windSpeed"), 0);
        EXPECT_GE(valueOf(one, "windGust"), valueOf(one, "windSpeed"));
        EXPECT_LT(valueOf(one, "windGust"), 120);
        EXPECT_GE(valueOf(one, "windDir"), 0);
        EXPECT_LT(valueOf(one, "windDir"), 360);
        EXPECT_GT(valueOf(one, "barometer"), 980);
        EXPECT_LT(valueOf(one, "barometer"), 1040);
        EXPECT_GE(valueOf(one, "rainRate"), 0);
        EXPECT_GE(valueOf(one, "solarRadiation"), 0);
        EXPECT_LT(valueOf(one, "solarRadiation"), 1000);
        EXPECT_LT(valueOf(one, "uvIndex"), 6);
        EXPECT_LT(valueOf(one, "sunrise"), valueOf(one, "sunset"));
    }
}

TEST(SimulatedStation, theSunShinesBetweenSunriseAndSunsetAlone) {
    for (const auto& one : notifications(7, kDayOfNotifications)) {
        const double now = one.time.secondsSinceReference();
        const bool day = now > valueOf(one, "sunrise") + 1800 && now < valueOf(one, "sunset") - 1800;
        const bool night = now < valueOf(one, "sunrise") || now > valueOf(one, "sunset");
        const double radiation = valueOf(one, "solarRadiation");
        EXPECT_TRUE(!day || radiation > 0) << one.time.isoText();
        EXPECT_TRUE(!night || radiation == 0) << one.time.isoText();
    }
}

TEST(SimulatedStation, theDayIsAsLongAsAnAlmanacSays) {
    const auto hours = [](const char* noon) {
        const Sun sun = sunAt(parseDate(noon).value());
        return sun.set.secondsSince(sun.rise) / 3600;
    };
    // 50° north: 16 h 22 min on the longest day, 8 h 4 min on the shortest, 12 h 10 min at the equinox.
    EXPECT_NEAR(hours("2026-06-21T12:00:00Z"), 16.37, 0.1);
    EXPECT_NEAR(hours("2026-12-21T12:00:00Z"), 8.07, 0.1);
    EXPECT_NEAR(hours("2026-03-20T12:00:00Z"), 12.17, 0.12);
    EXPECT_NEAR(sunAt(parseDate("2026-03-20T12:00:00Z").value()).sineOfHeight, 0.643, 0.01);  // 40°
}

TEST(SimulatedStation, todaysRainGrowsUntilMidnight) {
    const auto given = notifications(7, 2 * kDayOfNotifications);
    double highest = 0;
    for (std::size_t i = 1; i < given.size(); ++i) {
        const double before = valueOf(given[i - 1], "rainDaily");
        const double now = valueOf(given[i], "rainDaily");
        highest = std::max(highest, now);
        const bool newDay = given[i].time.isoText().find("T00:00:00") != std::string::npos;
        if (newDay)
            EXPECT_LT(now, 2);
        else
            EXPECT_GE(now, before);
    }
    EXPECT_GT(highest, 1);
}

TEST(SimulatedStation, withoutACountItDoesNotEnd) {
    auto source = simulatedSource(1);
    for (std::size_t i = 1; i <= 5000; ++i) {
        const auto next = source->next();
        ASSERT_TRUE(next.value());
        EXPECT_EQ(next.value()->line, i);
    }
}

TEST(SimulatedStation, allNotificationsShareOneTable) {
    const auto given = notifications(1, 3);
    EXPECT_EQ(given[0].readings->table(), given[2].readings->table());
    EXPECT_EQ(given[0].readings->entries()[4].label(), given[2].readings->entries()[4].label());
    EXPECT_EQ(given[0].station, "Simulated station");
}

TEST(DerivedReadings, windChillIsWhatTheWeatherServicesPublish) {
    EXPECT_NEAR(windChill(0, 20 / 3.6), -5, 0.3);  // published table: 0 °C, 20 km/h
    EXPECT_NEAR(windChill(-20, 30 / 3.6), -33, 0.5);
    EXPECT_EQ(windChill(10.1, 20), 10.1);
    EXPECT_EQ(windChill(5, 1.3), 5);
}

TEST(DerivedReadings, dewPointAndHumidityTurnEachOtherRound) {
    EXPECT_NEAR(dewPoint(20, 50), 9.3, 0.1);
    EXPECT_NEAR(dewPoint(15, 100), 15, 1e-9);
    EXPECT_NEAR(humidityOfDewPoint(20, dewPoint(20, 37)), 37, 1e-9);
    EXPECT_EQ(humidityOfDewPoint(10, 12), 100);
}

TEST(DerivedReadings, heatIndexIsWhatTheWeatherServicesPublish) {
    EXPECT_NEAR(heatIndex((90 - 32) / 1.8, 70), (105.9 - 32) / 1.8, 0.3);  // published table: 90 °F, 70 %
    EXPECT_EQ(heatIndex(26, 90), 26);
    EXPECT_EQ(heatIndex(35, 30), 35);
    EXPECT_GT(feelsLike(32, 70, 20), 38);
    EXPECT_LT(feelsLike(0, 70, 10), -4);
    EXPECT_EQ(feelsLike(20, 70, 10), 20);
}

TEST(DerivedReadings, theCompassHasSixteenPoints) {
    EXPECT_EQ(compassText(0), "N");
    EXPECT_EQ(compassText(11.2), "N");
    EXPECT_EQ(compassText(11.3), "NNE");
    EXPECT_EQ(compassText(348.8), "N");
    EXPECT_EQ(compassText(359.9), "N");
    EXPECT_EQ(compassText(-90), "W");
    EXPECT_EQ(compassText(540), "S");
}

}  // namespace
}  // namespace vigil
