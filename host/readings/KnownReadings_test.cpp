#include "host/readings/KnownReadings.hpp"

#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "host/readings/KeyNames.hpp"
#include "platform/Number.hpp"

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

std::string range(Bounds bounds, std::string_view unit) {
    std::string text = numberText(bounds.least) + " to " + numberText(bounds.most);
    if (!unit.empty()) (text += ' ') += unit;
    return text;
}

/// The reading's line in the table of the manual.
std::string documented(const KnownReading& known) {
    const bool number = known.kind == kNumericType;
    const std::string_view unit = known.unit(UnitSystem::Metric);
    const std::string_view held = number ? unit : known.kind == kTextType ? "text" : "time";
    std::string line = "| `" + std::string(known.key) + "` | " + std::string(known.name) + " | ";
    ((line += held) += " | ") += number ? known.unit(UnitSystem::Us) : "";
    return line + " | " + (number ? range(known.bounds, unit) : "") + " |";
}

TEST(KnownReadings, theManualListsThemAsTheyAre) {
    std::ifstream file(VIGIL_SOURCE_DIR "/docs/readings.md");
    std::stringstream text;
    text << file.rdbuf();
    const std::string manual = text.str();
    std::size_t lines = 0;
    for (const KnownReading& known : knownReadings()) {
        const bool listed = manual.find(documented(known) + "\n") != std::string::npos;
        // Those of channels are named in a sentence, by the first and the last.
        std::string next(known.key.substr(0, known.key.find_last_not_of("0123456789") + 1));
        const std::string number(known.key.substr(next.size()));
        next += number.empty() ? "" : std::to_string(std::stoi(number) + 1);
        const bool inside = !number.empty() && knownReading(next);
        const bool named = manual.find("`" + std::string(known.key) + "`") != std::string::npos;
        EXPECT_TRUE(listed || inside || (!number.empty() && named)) << documented(known);
        lines += listed;
    }
    EXPECT_GT(lines, 50u);
    for (const Unit unit :
         {Unit::Celsius, Unit::Hectopascal, Unit::Millimetre, Unit::MillimetrePerHour, Unit::Metre,
          Unit::Kilometre, Unit::Percent, Unit::Degree, Unit::Lux, Unit::PartsPerMillion, Unit::Volt,
          Unit::WattPerSquareMetre, Unit::MicrogramPerCubicMetre, Unit::MetresPerSecond,
          Unit::HectopascalPerThreeHours}) {
        const std::string shortUnit = std::string(unitText(unit));
        EXPECT_NE(
            manual.find("| " + shortUnit + " | " + range(boundsOf(quantityOf(unit)), shortUnit) + " |\n"),
            std::string::npos)
            << shortUnit;
    }
}

}  // namespace
}  // namespace vigil
