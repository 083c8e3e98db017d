#include <algorithm>
#include <random>

#include <gtest/gtest.h>

#include "host/readings/PacketSamples.hpp"
#include "host/readings/StationReadings.hpp"

namespace vigil {
namespace {

constexpr double kNow = 8e8;  // begins a slot of every window here

class StationRolling : public ::testing::Test {
  protected:
    void choose(std::initializer_list<const char*> texts, UnitSystem system = UnitSystem::Metric) {
        StationReadingsSettings settings{.system = system, .derive = true};
        for (const char* text : texts)
            settings.rolling.push_back(RollingChoice::parse(text).value());
        m_station = std::make_unique<StationReadings>(settings);
    }
    std::shared_ptr<const Readings> take(double after, std::vector<PacketReading> readings,
                                         std::string sensor = {}) {
        return m_station
            ->take(packetSample(kNow + after, std::move(readings), std::move(sensor)), Date(kNow + after))
            .batch;
    }
    static double valueOf(const std::shared_ptr<const Readings>& batch, const char* key) {
        const AgentProperty* reading = batch ? batch->objectForKey(key) : nullptr;
        EXPECT_NE(reading, nullptr) << key;
        return reading ? reading->value() : -1e9;
    }

    std::unique_ptr<StationReadings> m_station;
};

TEST_F(StationRolling, meanMinimumAndMaximumAreReadingsOfTheirOwn) {
    choose({"windSpeed mean 10", "windSpeed min 10", "windSpeed max 10"}, UnitSystem::Us);
    take(0, {numberSample("windSpeed", 2)});
    take(300, {numberSample("windSpeed", 10)});
    const auto batch = take(500, {numberSample("windSpeed", 6)});
    const AgentProperty* mean = batch->objectForKey("windSpeedMean10");
    ASSERT_NE(mean, nullptr);
    EXPECT_DOUBLE_EQ(mean->value(), 6);
    EXPECT_NEAR(mean->unitValue(), 13.42, 0.01);
    EXPECT_EQ(mean->unit(), "mph");
    EXPECT_EQ(mean->name(), "Wind Speed, mean of 10 min");
    EXPECT_EQ(mean->time(), Date(kNow + 500));
    EXPECT_EQ(valueOf(batch, "windSpeedMin10"), 2);
    EXPECT_EQ(valueOf(batch, "windSpeedMax10"), 10);
    const auto later = take(1000, {numberSample("windSpeed", 7)});
    EXPECT_DOUBLE_EQ(valueOf(later, "windSpeedMean10"), 6.5);
    EXPECT_EQ(valueOf(later, "windSpeedMin10"), 6);
    EXPECT_EQ(valueOf(later, "windSpeedMax10"), 7);
}

TEST_F(StationRolling, comeWithTheReadingTheyAreMadeOf) {
    choose({"windSpeed mean 10", "windSpeed age"});
    EXPECT_EQ(take(0, {numberSample("outsideTemp", 1)})->entries().size(), 1u);
    EXPECT_EQ(take(16, {numberSample("windSpeed", 1)})->entries().size(), 3u);
    const auto other = take(76, {numberSample("outsideTemp", 1)});
    EXPECT_EQ(other->objectForKey("windSpeedMean10"), nullptr);
    EXPECT_DOUBLE_EQ(valueOf(other, "windSpeedAge"), 1) << "an age is news whoever speaks";
}

TEST_F(StationRolling, ageTellsForHowLongAReadingHasNotCome) {
    choose({"windSpeed age"});
    EXPECT_EQ(m_station->tick(Date(kNow)), nullptr);
    EXPECT_EQ(valueOf(take(0, {numberSample("windSpeed", 1)}), "windSpeedAge"), 0);
    const auto batch = take(90, {missingSample("windSpeed"), numberSample("outsideTemp", 1)});
    EXPECT_DOUBLE_EQ(valueOf(batch, "windSpeedAge"), 1.5);
    EXPECT_EQ(batch->objectForKey("windSpeedAge")->unitStringValueWithUnitShort(), "1.5 min");
    EXPECT_EQ(m_station->tick(Date(kNow + 149)), nullptr) << "something was announced just now";
    const auto silent = m_station->tick(Date(kNow + 150));
    EXPECT_DOUBLE_EQ(valueOf(silent, "windSpeedAge"), 2.5);
    EXPECT_EQ(silent->entries().size(), 1u) << "nothing else is news";
    EXPECT_EQ(silent->objectForKey("windSpeedAge")->time(), Date(kNow + 150));
    EXPECT_EQ(m_station->tick(Date(kNow + 209)), nullptr);
    EXPECT_DOUBLE_EQ(valueOf(m_station->tick(Date(kNow + 3600)), "windSpeedAge"), 60);
}

TEST_F(StationRolling, withoutAnAgeChosenSilenceIsSilence) {
    choose({"windSpeed mean 10"});
    take(0, {numberSample("windSpeed", 1)});
    EXPECT_EQ(m_station->tick(Date(kNow + 3600)), nullptr);
}

TEST_F(StationRolling, minutesBelowAndAboveAreCountedInTheUsersUnit) {
    choose({"outsideTemp below 32", "outsideTemp above 40"}, UnitSystem::Us);
    const auto below = [&](double after, double fahrenheit) {
        return valueOf(take(after, {numberSample("outsideTemp", fahrenheit, Unit::Fahrenheit)}),
                       "outsideTempMinutesBelow32");
    };
    EXPECT_EQ(below(0, 31), 0);
    EXPECT_EQ(below(600, 31.9), 10);
    EXPECT_EQ(below(900, 32), 0) << "32 is not below 32";
    EXPECT_EQ(below(960, 20), 0);
    EXPECT_EQ(below(1080, 20), 2);
    const auto warm = take(1140, {numberSample("outsideTemp", 41, Unit::Fahrenheit)});
    EXPECT_EQ(warm->objectForKey("outsideTempMinutesBelow32")->name(),
              "Outside Temperature, minutes below 32 °F");
    EXPECT_EQ(warm->objectForKey("outsideTempMinutesBelow32")->unit(), "min");
    EXPECT_EQ(valueOf(warm, "outsideTempMinutesAbove40"), 0);
    EXPECT_EQ(valueOf(take(1200, {numberSample("outsideTemp", 40.1, Unit::Fahrenheit)}),
                      "outsideTempMinutesAbove40"),
              1);
}

TEST_F(StationRolling, alsoOfWhatTheHostDerives) {
    choose({"windChill min 10", "windDir mean 10"});
    take(0, {numberSample("outsideTemp", -5), numberSample("windSpeed", 10), numberSample("windDir", 350)});
    const auto batch = take(
        60, {numberSample("outsideTemp", 5), numberSample("windSpeed", 10), numberSample("windDir", 30)});
    EXPECT_LT(valueOf(batch, "windChillMin10"), -10);
    EXPECT_NEAR(valueOf(batch, "windDirMean10"), 10, 1e-9) << "round the circle";
}

TEST_F(StationRolling, aReadingToldAgainWithItsOldTimeIsOneSample) {
    choose({"windSpeed mean 10"});
    Packet packet = packetSample(kNow, {numberSample("windSpeed", 2)});
    packet.readings[0].time = Date(kNow);
    m_station->take(packet, packet.arrived);
    for (int i = 1; i <= 5; ++i) {
        packet.arrived = Date(kNow + i * 16);
        m_station->take(packet, packet.arrived);
    }
    EXPECT_DOUBLE_EQ(valueOf(take(100, {numberSample("windSpeed", 8)}), "windSpeedMean10"), 5);
}

TEST_F(StationRolling, textsAndDatesHaveNoMean) {
    choose({"sky mean 10", "sunrise max 10", "sky age"});
    PacketReading rise = numberSample("sunrise", 8e8);
    rise.type = kDateType;
    const auto batch = take(0, {textSample("sky", "Rain"), rise});
    EXPECT_EQ(batch->entries().size(), 3u);
    EXPECT_EQ(valueOf(batch, "skyAge"), 0);
}

TEST_F(StationRolling, theirKeysAreTheirs) {
    choose({"windSpeed mean 10", "windSpeed mean 10"});
    const auto batch = take(0, {numberSample("windSpeed", 4), numberSample("windSpeedMean10", 77)});
    EXPECT_EQ(valueOf(batch, "windSpeedMean10"), 4);
    EXPECT_EQ(valueOf(batch, "windSpeedMean10_2"), 77) << "the station's own of that name";
    EXPECT_EQ(batch->entries().size(), 3u) << "a choice made twice is made once";
}

TEST_F(StationRolling, atMostSoManyAreKept) {
    StationReadingsSettings settings;
    for (int minutes = 1; minutes <= 100; ++minutes)
        settings.rolling.push_back(RollingChoice::parse("windSpeed max " + std::to_string(minutes)).value());
    m_station = std::make_unique<StationReadings>(settings);
    EXPECT_EQ(take(0, {numberSample("windSpeed", 4)})->entries().size(),
              1 + StationReadings::kMostRollingChoices);
}

TEST_F(StationRolling, goOnAfterAClockWasSetBack) {
    choose({"windSpeed mean 10", "windSpeed above 5", "windSpeed age"});
    take(0, {numberSample("windSpeed", 10)});
    take(300, {numberSample("windSpeed", 10)});
    const auto batch = take(-3000, {numberSample("windSpeed", 20)});
    EXPECT_EQ(valueOf(batch, "windSpeedMean10"), 20) << "what came later is no past";
    EXPECT_EQ(valueOf(batch, "windSpeedMinutesAbove5"), 0);
    EXPECT_EQ(valueOf(batch, "windSpeedAge"), 0);
    const auto next = take(-2940, {numberSample("windSpeed", 10)});
    EXPECT_EQ(valueOf(next, "windSpeedMean10"), 15);
    EXPECT_EQ(valueOf(next, "windSpeedMinutesAbove5"), 1);
}

TEST_F(StationRolling, agreeWithLookingThroughAllThatWasSent) {
    choose({"windSpeed mean 10", "windSpeed max 10", "windSpeed below 5"});
    struct Sample {
        double time;
        double value;
    };
    std::mt19937 random(7);
    std::vector<Sample> all;
    double time = 0;
    for (int i = 0; i < 2000; ++i) {
        time += std::uniform_int_distribution<int>(3, i % 50 == 0 ? 900 : 40)(random);
        const double speed = std::uniform_int_distribution<int>(0, 99)(random) / 10.0;
        all.push_back({time, speed});
        const auto batch = take(time, {numberSample("windSpeed", speed)});
        // Slots of 2 s, 300 of them, counted from the reference date.
        const double first = std::floor((kNow + time) / 2) - 299;
        double sum = 0;
        double most = -1;
        int count = 0;
        for (const Sample& sample : all) {
            if (std::floor((kNow + sample.time) / 2) < first) continue;
            sum += sample.value;
            most = std::max(most, sample.value);
            ++count;
        }
        double since = -1;
        for (auto sample = all.rbegin(); sample != all.rend() && sample->value < 5; ++sample)
            since = sample->time;
        ASSERT_NEAR(valueOf(batch, "windSpeedMean10"), sum / count, 1e-9) << i;
        ASSERT_EQ(valueOf(batch, "windSpeedMax10"), most) << i;
        ASSERT_NEAR(valueOf(batch, "windSpeedMinutesBelow5"), since < 0 ? 0 : (time - since) / 60, 1e-9) << i;
    }
}

}  // namespace
}  // namespace vigil
