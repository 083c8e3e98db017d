#include <cmath>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "host/readings/PacketSamples.hpp"
#include "host/readings/StationReadings.hpp"

namespace vigil {
namespace {

constexpr double kNow = 8e8;

/// Takes one packet after another, far enough apart that none is a repeat.
class StationValues : public ::testing::Test {
  protected:
    std::shared_ptr<const Readings> take(std::vector<PacketReading> readings) {
        m_now += 16;
        const Taken taken = m_station.take(packetSample(m_now, std::move(readings)), Date(m_now));
        EXPECT_EQ(taken.batch != nullptr, taken.kind == Taken::Kind::News);
        return taken.batch;
    }
    const StationReadingsCounts& counts() const { return m_station.counts(); }

    double m_now = kNow;
    StationReadings m_station{{.system = UnitSystem::Us,
                               .units = {{"windSpeed", Unit::Knots}, {"outsideTemp", Unit::Percent}},
                               .derive = false}};
};

TEST_F(StationValues, areHeldInTheTablesUnitAndShownInTheUsers) {
    const auto batch = take({numberSample("outsideTemp", 50, Unit::Fahrenheit),
                             numberSample("windSpeed", 36, Unit::KilometresPerHour),
                             numberSample("barometer", 1013.25, Unit::Hectopascal),
                             numberSample("uvIndex", 3), numberSample("rainDaily", 2, Unit::Centimetre)});
    const AgentProperty* temperature = batch->objectForKey("outsideTemp");
    EXPECT_DOUBLE_EQ(temperature->value(), 10);
    EXPECT_EQ(temperature->unitValue(), 50);
    EXPECT_EQ(temperature->unit(), "°F") << "a choice that does not convert is passed over";
    EXPECT_EQ(temperature->name(), "Outside Temperature");
    EXPECT_EQ(temperature->time(), Date(m_now));
    const AgentProperty* wind = batch->objectForKey("windSpeed");
    EXPECT_DOUBLE_EQ(wind->value(), 10);
    EXPECT_NEAR(wind->unitValue(), 19.438, 1e-3);
    EXPECT_EQ(wind->unit(), "kn");
    EXPECT_NEAR(batch->objectForKey("barometer")->unitValue(), 29.921, 1e-3);
    EXPECT_EQ(batch->objectForKey("uvIndex")->unitStringValueWithUnitShort(), "3");
    EXPECT_DOUBLE_EQ(batch->objectForKey("rainDaily")->value(), 20);
    EXPECT_EQ(batch->objectForKey("rainDaily")->unit(), "in");
}

TEST_F(StationValues, withoutAUnitAreInTheOneHeldInside) {
    const auto batch = take({numberSample("outsideTemp", 10), numberSample("thing", 4)});
    EXPECT_EQ(batch->objectForKey("outsideTemp")->value(), 10);
    EXPECT_EQ(batch->objectForKey("outsideTemp")->unitValue(), 50);
    EXPECT_EQ(batch->objectForKey("thing")->unitStringValueWithUnitShort(), "4");
}

TEST_F(StationValues, keepTheSendersOwnPrintOnlyWhereItsUnitIsShown) {
    const auto printed = [](PacketReading reading, const char* text) {
        reading.unitString = text;
        return reading;
    };
    const auto batch = take({printed(numberSample("outsideTemp", 10, Unit::Celsius), "10 degrees"),
                             printed(numberSample("barometer", 29.9, Unit::InchOfMercury), "29.9 inches"),
                             printed(textSample("sky", "Rain"), "it rains")});
    EXPECT_EQ(batch->objectForKey("outsideTemp")->unitStringValueWithUnitShort(), "50 °F");
    EXPECT_EQ(batch->objectForKey("barometer")->unitStringValueWithUnitShort(), "29.9 inches");
    EXPECT_EQ(batch->objectForKey("sky")->unitStringValueWithUnitShort(), "it rains");
}

TEST_F(StationValues, areKeptAsTheyAreWhereTheSenderGivesBoth) {
    PacketReading both = numberSample("windSpeed", -3);
    both.unitValue = 77;
    both.unitText = "Bft";
    PacketReading bare = numberSample("outsideTemp", 400, Unit::Fahrenheit);
    bare.unitValue = 1.5;
    const auto batch = take({both, bare});
    EXPECT_EQ(batch->objectForKey("windSpeed")->value(), -3);
    EXPECT_EQ(batch->objectForKey("windSpeed")->unitStringValueWithUnitShort(), "77 Bft");
    EXPECT_EQ(batch->objectForKey("outsideTemp")->value(), 400);
    EXPECT_EQ(batch->objectForKey("outsideTemp")->unitStringValueWithUnitShort(), "1.5 °F");
    EXPECT_EQ(counts().readingsDropped(), 0u);
}

TEST_F(StationValues, ofUnknownKeysAreReadingsOfTheirOwn) {
    PacketReading named = numberSample("AqPM1.0", 12, Unit::MicrogramPerCubicMetre);
    PacketReading far = numberSample("cloud base", 1000, Unit::Metre);
    far.name = "Clouds";
    PacketReading tension = numberSample("soil#1", 30);
    tension.unitText = "cb";
    PacketReading spelt = numberSample("pool", 25);
    spelt.unitText = "degC";
    const auto batch = take({named, far, tension, spelt, numberSample("soil.1", 1), numberSample("2nd", 2)});
    EXPECT_EQ(batch->objectForKey("AqPM1_0")->name(), "AqPM1.0");
    EXPECT_EQ(batch->objectForKey("AqPM1_0")->unit(), "µg/m³");
    EXPECT_EQ(batch->objectForKey("cloud_base")->name(), "Clouds");
    EXPECT_EQ(batch->objectForKey("cloud_base")->value(), 1000);
    EXPECT_NEAR(batch->objectForKey("cloud_base")->unitValue(), 3280.84, 1e-2);
    EXPECT_EQ(batch->objectForKey("soil_1")->unitStringValueWithUnitShort(), "30 cb");
    EXPECT_EQ(batch->objectForKey("pool")->unitStringValueWithUnitShort(), "77 °F");
    EXPECT_EQ(batch->objectForKey("soil_1_2")->value(), 1) << "keys that meet stay apart";
    EXPECT_EQ(batch->objectForKey("k2nd")->value(), 2);
}

TEST_F(StationValues, thatAreMissingAreLeftOut) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    take({numberSample("dewPoint", 4)});
    const auto batch =
        take({numberSample("outsideTemp", -9999, Unit::Fahrenheit),
              numberSample("insideTemp", -9999.9, Unit::Celsius),
              numberSample("windSpeed", 999, Unit::MilesPerHour), numberSample("outsideHumidity", 9999),
              numberSample("windGust", nan), textSample("windDir", "MM"), textSample("stationModel", "--"),
              textSample("barometer", ""), missingSample("dewPoint"), missingSample("never"),
              // These may well be true.
              numberSample("pressure", 999, Unit::Hectopascal), numberSample("count", 9999),
              numberSample("illuminance", 99999, Unit::Lux)});
    EXPECT_EQ(batch->entries().size(), 3u);
    EXPECT_EQ(batch->objectForKey("pressure")->value(), 999);
    EXPECT_EQ(batch->objectForKey("count")->value(), 9999);
    EXPECT_EQ(batch->objectForKey("illuminance")->value(), 99999);
    EXPECT_EQ(counts().missing, 10u);
    EXPECT_EQ(counts().implausible, 0u);
    EXPECT_EQ(m_station.current()->objectForKey("dewPoint")->value(), 4) << "what was known stays known";
    EXPECT_TRUE(batch->table()->slot("dewPoint"));
    EXPECT_FALSE(batch->table()->slot("never")) << "what never had a value is no reading";
    EXPECT_FALSE(batch->table()->slot("stationModel"));
}

TEST_F(StationValues, thatCannotBeAreLeftOutAndCounted) {
    const double infinite = std::numeric_limits<double>::infinity();
    const auto batch = take(
        {numberSample("windSpeed", 1048, Unit::MilesPerHour), numberSample("outsideTemp", 85, Unit::Celsius),
         numberSample("outsideHumidity", 111), numberSample("barometer", 0, Unit::InchOfMercury),
         numberSample("rainRate", -0.1), numberSample("own", infinite),
         numberSample("pond", 300, Unit::Celsius), numberSample("windDir", 360)});
    EXPECT_EQ(batch->entries().size(), 1u);
    EXPECT_EQ(batch->objectForKey("windDir")->value(), 360);
    EXPECT_EQ(counts().implausible, 7u);
    EXPECT_EQ(counts().readingsDropped(), 7u);
}

TEST_F(StationValues, thatAreNumbersInTextsAreNumbersWhereOneBelongs) {
    const auto batch = take({textSample("outsideTemp", " +12.5 "), textSample("windSpeed", "gusty"),
                             textSample("sky", "12.5"), textSample("windDir", "270deg")});
    EXPECT_EQ(batch->objectForKey("outsideTemp")->value(), 12.5);
    EXPECT_EQ(batch->objectForKey("outsideTemp")->type(), kNumericType);
    EXPECT_EQ(batch->objectForKey("outsideTemp")->unitStringValueWithUnitShort(), "54.5 °F");
    EXPECT_EQ(batch->objectForKey("sky")->type(), kTextType);
    EXPECT_EQ(batch->objectForKey("sky")->stringValue(), "12.5");
    EXPECT_EQ(batch->objectForKey("windSpeed"), nullptr);
    EXPECT_EQ(counts().unreadable, 2u);
}

TEST_F(StationValues, inAUnitOfSomethingElseAreLeftOut) {
    const auto batch = take(
        {numberSample("outsideTemp", 20, Unit::Hectopascal), numberSample("uvIndex", 20, Unit::Percent)});
    EXPECT_EQ(batch->objectForKey("outsideTemp"), nullptr);
    EXPECT_EQ(batch->objectForKey("uvIndex")->unit(), "%") << "an index may have any";
    EXPECT_EQ(counts().wrongUnit, 1u);
}

TEST_F(StationValues, ofTextsAndDatesAreKept) {
    PacketReading rise = numberSample("sunrise", 8e8 + 3600);
    rise.type = kDateType;
    PacketReading never = rise;
    never.key = "sunset";
    never.value = std::numeric_limits<double>::quiet_NaN();
    PacketReading hidden = textSample("firmware", "1.2 \xFF");
    hidden.visible = false;
    const auto batch = take({rise, never, hidden});
    EXPECT_EQ(batch->objectForKey("sunrise")->type(), kDateType);
    EXPECT_EQ(batch->objectForKey("sunrise")->value(), 8e8 + 3600);
    EXPECT_EQ(batch->objectForKey("sunset"), nullptr);
    EXPECT_EQ(batch->objectForKey("firmware")->stringValue(), "1.2 \xEF\xBF\xBD");
    EXPECT_FALSE(batch->objectForKey("firmware")->visible());
}

TEST_F(StationValues, anotherUnitInTheNextPacketIsHeard) {
    EXPECT_DOUBLE_EQ(
        take({numberSample("outsideTemp", 50, Unit::Fahrenheit)})->objectForKey("outsideTemp")->value(), 10);
    EXPECT_DOUBLE_EQ(
        take({numberSample("outsideTemp", 50, Unit::Celsius)})->objectForKey("outsideTemp")->value(), 50);
}

TEST_F(StationValues, shareLabelsAndTheTableOfKeys) {
    const auto first =
        take({numberSample("outsideTemp", 1), numberSample("windSpeed", 2), textSample("sky", "a")});
    const auto second = take({numberSample("outsideTemp", 3), textSample("sky", "b")});
    const auto third = take({numberSample("outsideTemp", 3), numberSample("new", 1)});
    EXPECT_EQ(first->table(), second->table());
    EXPECT_EQ(m_station.current()->table(), third->table());
    EXPECT_NE(first->table(), third->table());
    EXPECT_EQ(first->objectForKey("outsideTemp")->label(), third->objectForKey("outsideTemp")->label());
    EXPECT_EQ(first->objectForKey("sky")->label(), second->objectForKey("sky")->label());
}

TEST_F(StationValues, aStationHasAtMostSoManyKeys) {
    std::vector<PacketReading> readings;
    for (int i = 0; i < 600; ++i)
        readings.push_back(numberSample("key" + std::to_string(i), i));
    readings.push_back(numberSample(std::string(StationReadings::kLongestReadingName + 1, 'a'), 1));
    const auto batch = take(readings);
    EXPECT_EQ(batch->entries().size(), StationReadings::kMostKeys);
    EXPECT_EQ(batch->objectForKey("key511")->value(), 511);
    EXPECT_EQ(counts().noPlace, 600 - StationReadings::kMostKeys);
    EXPECT_EQ(counts().longNames, 1u);
    EXPECT_EQ(take({numberSample("one more", 1)}), nullptr);
    EXPECT_EQ(take({numberSample("key3", 1)})->entries().size(), 1u);
}

TEST_F(StationValues, ofOneKeyThatStandsTwiceTheLastCounts) {
    const auto batch = take({numberSample("outsideTemp", 1), numberSample("outsideTemp", 2)});
    EXPECT_EQ(batch->entries().size(), 1u);
    EXPECT_EQ(batch->objectForKey("outsideTemp")->value(), 2);
}

}  // namespace
}  // namespace vigil
