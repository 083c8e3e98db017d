#include "host/readings/KnownReadings.hpp"

#include <set>

#include <gtest/gtest.h>

#include "host/readings/KeyNames.hpp"

namespace vigil {
namespace {

TEST(KnownReadings, everyKeyIsOneOfTheConditionLanguageAndFoundAgain) {
    std::set<std::string_view> keys;
    for (const KnownReading& known : knownReadings()) {
        EXPECT_TRUE(keys.insert(known.key).second) << known.key << " stands twice";
        EXPECT_EQ(keyFromName(known.key), known.key);
        EXPECT_EQ(knownReading(known.key), &known);
        EXPECT_FALSE(known.name.empty()) << known.key;
        EXPECT_LT(known.bounds.least, known.bounds.most) << known.key;
    }
    EXPECT_EQ(knownReading("windchill"), nullptr);
    EXPECT_EQ(knownReading(""), nullptr);
}

TEST(KnownReadings, theirUnitsAreThoseOfTheUser) {
    EXPECT_EQ(knownReading("outsideTemp")->unit(UnitSystem::Metric), "°C");
    EXPECT_EQ(knownReading("outsideTemp")->unit(UnitSystem::Us), "°F");
    EXPECT_EQ(knownReading("windGust")->unit(UnitSystem::Us), "mph");
    EXPECT_EQ(knownReading("barometerTrend")->unit(UnitSystem::Us), "inHg/3 h");
    EXPECT_EQ(knownReading("lightningDistance")->unit(UnitSystem::Us), "mi");
    EXPECT_EQ(knownReading("uvIndex")->unit(UnitSystem::Us), "");
    EXPECT_EQ(knownReading("sunrise")->kind, kDateType);
    EXPECT_EQ(knownReading("windDirText")->kind, kTextType);
}

TEST(KnownReadings, thoseOfChannelsAreNumbered) {
    ASSERT_NE(knownReading("soilMoisture16"), nullptr);
    EXPECT_EQ(knownReading("soilMoisture16")->name, "Soil Moisture 16");
    EXPECT_EQ(knownReading("soilMoisture16")->held, Unit::Percent);
    EXPECT_EQ(knownReading("temp8")->held, Unit::Celsius);
    EXPECT_EQ(knownReading("humidity1")->name, "Humidity 1");
    EXPECT_EQ(knownReading("soilMoisture17"), nullptr);
    EXPECT_EQ(knownReading("temp0"), nullptr);
}

TEST(KnownReadings, recordsAreNoMistakesAndSpikesAre) {
    EXPECT_TRUE(knownReading("outsideTemp")->bounds.hold(-89.2));
    EXPECT_TRUE(knownReading("outsideTemp")->bounds.hold(56.7));
    EXPECT_TRUE(knownReading("windGust")->bounds.hold(113.3));
    EXPECT_TRUE(knownReading("barometer")->bounds.hold(870));
    EXPECT_TRUE(knownReading("barometer")->bounds.hold(1084.8));
    EXPECT_TRUE(knownReading("rainDaily")->bounds.hold(1825));
    EXPECT_FALSE(
        knownReading("windSpeed")->bounds.hold(*convert(1048, Unit::MilesPerHour, Unit::MetresPerSecond)));
    EXPECT_FALSE(knownReading("outsideTemp")->bounds.hold(85));  // a sensor that has just been switched on
    EXPECT_FALSE(Bounds{}.hold(std::numeric_limits<double>::infinity()));
    EXPECT_FALSE(Bounds{}.hold(std::numeric_limits<double>::quiet_NaN()));
    EXPECT_TRUE(boundsOf(Quantity::Pressure).hold(6.8));  // of vapour
}

}  // namespace
}  // namespace vigil
