#include <gtest/gtest.h>

#include "host/readings/Derived.hpp"
#include "host/readings/PacketSamples.hpp"
#include "host/readings/StationReadings.hpp"

namespace vigil {
namespace {

constexpr double kNow = 8e8;

class StationDerived : public ::testing::Test {
  protected:
    std::shared_ptr<const Readings> take(std::vector<PacketReading> readings, std::string sensor = {}) {
        m_now += 16;
        return m_station.take(packetSample(m_now, std::move(readings), std::move(sensor)), Date(m_now)).batch;
    }
    double m_now = kNow;
    StationReadings m_station{{.system = UnitSystem::Us}};
};

TEST_F(StationDerived, followFromWhatTheStationSends) {
    const auto cold = take({numberSample("outsideTemp", -5), numberSample("outsideHumidity", 80),
                            numberSample("windSpeed", 10), numberSample("windDir", 95)});
    ASSERT_NE(cold->objectForKey("windChill"), nullptr);
    EXPECT_DOUBLE_EQ(cold->objectForKey("windChill")->value(), windChill(-5, 10));
    EXPECT_NEAR(cold->objectForKey("windChill")->unitValue(), windChill(-5, 10) * 1.8 + 32, 1e-9);
    EXPECT_EQ(cold->objectForKey("windChill")->unit(), "°F");
    EXPECT_EQ(cold->objectForKey("windChill")->unitStringValueWithUnitShort(), "7.4 °F") << "of 7.38…";
    EXPECT_EQ(cold->objectForKey("windChill")->name(), "Wind Chill");
    EXPECT_EQ(cold->objectForKey("windChill")->time(), Date(m_now));
    EXPECT_DOUBLE_EQ(cold->objectForKey("dewPoint")->value(), dewPoint(-5, 80));
    EXPECT_DOUBLE_EQ(cold->objectForKey("feelsLike")->value(), windChill(-5, 10));
    EXPECT_EQ(cold->objectForKey("windDirText")->stringValue(), "E");
    EXPECT_EQ(cold->objectForKey("windDirText")->type(), kTextType);
    const auto hot = take({numberSample("outsideTemp", 35), numberSample("outsideHumidity", 60),
                           numberSample("windSpeed", 10)});
    EXPECT_DOUBLE_EQ(hot->objectForKey("heatIndex")->value(), heatIndex(35, 60));
    EXPECT_DOUBLE_EQ(hot->objectForKey("feelsLike")->value(), heatIndex(35, 60));
    EXPECT_EQ(hot->objectForKey("windDirText"), nullptr) << "no direction came";
}

TEST_F(StationDerived, needAllTheirInputs) {
    EXPECT_EQ(take({numberSample("outsideTemp", -5)})->entries().size(), 1u);
    const auto damp = take({numberSample("outsideTemp", -5), numberSample("outsideHumidity", 50)});
    EXPECT_NE(damp->objectForKey("dewPoint"), nullptr);
    EXPECT_EQ(damp->objectForKey("windChill"), nullptr);
    EXPECT_EQ(damp->objectForKey("feelsLike"), nullptr);
    EXPECT_EQ(
        take({numberSample("outsideTemp", -5), numberSample("outsideHumidity", 0)})->objectForKey("dewPoint"),
        nullptr)
        << "perfectly dry air has none";
    EXPECT_EQ(take({numberSample("windSpeed", 10), numberSample("outsideHumidity", 50)})->entries().size(),
              2u)
        << "the temperature of before is not taken for now's";
}

TEST_F(StationDerived, areNeverPutBesideWhatTheStationSendsItself) {
    EXPECT_NE(
        take({numberSample("outsideTemp", -5), numberSample("windSpeed", 10)})->objectForKey("windChill"),
        nullptr);
    const auto own = take(
        {numberSample("outsideTemp", -5), numberSample("windSpeed", 10), numberSample("windChill", -40)});
    EXPECT_EQ(own->objectForKey("windChill")->value(), -40);
    EXPECT_EQ(
        take({numberSample("outsideTemp", -5), numberSample("windSpeed", 10), missingSample("windChill")})
            ->objectForKey("windChill"),
        nullptr)
        << "it says that it has none";
}

TEST_F(StationDerived, takeFreshReadingsOfOtherSensors) {
    take({numberSample("windSpeed", 10)}, "vane");
    const double windTime = m_now;
    const auto both = take({numberSample("outsideTemp", -5)}, "shed");
    ASSERT_NE(both->objectForKey("windChill"), nullptr);
    EXPECT_EQ(both->objectForKey("windChill")->time(), Date(m_now)) << "as new as the newest input";
    EXPECT_NE(m_now, windTime);
    m_now += 700;
    EXPECT_EQ(take({numberSample("outsideTemp", -5)}, "shed")->objectForKey("windChill"), nullptr);
    EXPECT_NE(m_station.current()->objectForKey("windChill"), nullptr);
}

TEST_F(StationDerived, areNotMadeOfNumbersInUnitsThatNobodyKnows) {
    PacketReading odd = numberSample("outsideTemp", -5);
    odd.unitText = "°Ré";
    const auto batch = take({odd, numberSample("windSpeed", 10)});
    EXPECT_EQ(batch->objectForKey("outsideTemp")->unit(), "°Ré");
    EXPECT_EQ(batch->objectForKey("windChill"), nullptr);
}

TEST_F(StationDerived, canBeSwitchedOff) {
    StationReadings plain({.derive = false});
    const auto batch =
        plain
            .take(packetSample(kNow, {numberSample("outsideTemp", -5), numberSample("windSpeed", 10)}),
                  Date(kNow))
            .batch;
    EXPECT_EQ(batch->entries().size(), 2u);
}

TEST_F(StationDerived, haveNoPlaceInAFullStation) {
    std::vector<PacketReading> readings = {numberSample("outsideTemp", -5), numberSample("windSpeed", 10)};
    for (std::size_t i = 2; i < StationReadings::kMostKeys; ++i)
        readings.push_back(numberSample("key" + std::to_string(i), 1));
    EXPECT_EQ(take(readings)->entries().size(), StationReadings::kMostKeys);
    EXPECT_EQ(m_station.counts().noPlace, 1u) << "of the wind chill";
}

}  // namespace
}  // namespace vigil
