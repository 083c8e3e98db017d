#include "host/readings/Units.hpp"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "host/readings/Units_Table.hpp"

namespace vigil {
namespace {

using enum Unit;

struct Cell {
    double value;
    Unit from;
    Unit to;
    double wanted;
    double tolerance;  // half of the last digit that is published; 0 where it is exact
};

void expectAll(std::initializer_list<Cell> cells) {
    for (const Cell& cell : cells) {
        const auto given = convert(cell.value, cell.from, cell.to);
        ASSERT_TRUE(given) << unitText(cell.from) << " to " << unitText(cell.to);
        const double rounding = 4 * std::numeric_limits<double>::epsilon() * std::abs(cell.wanted);
        EXPECT_NEAR(*given, cell.wanted, cell.tolerance + rounding)
            << cell.value << " " << unitText(cell.from) << " in " << unitText(cell.to);
    }
}

TEST(Units, convertAsTheirDefinitionsSay) {
    expectAll({
        {1, Inch, Millimetre, 25.4, 0},
        {1, Foot, Metre, 0.3048, 0},
        {1, Mile, Kilometre, 1.609344, 0},
        {1, Mile, Foot, 5280, 0},
        {1, MilesPerHour, MetresPerSecond, 0.44704, 0},
        {1, MilesPerHour, KilometresPerHour, 1.609344, 0},
        {1, Knots, KilometresPerHour, 1.852, 0},
        {36, KilometresPerHour, MetresPerSecond, 10, 0},
        {1, InchPerHour, MillimetrePerHour, 25.4, 0},
        {2.5, CentimetrePerHour, MillimetrePerHour, 25, 0},
        {32, Fahrenheit, Celsius, 0, 0},
        {100, Celsius, Fahrenheit, 212, 0},
        {-40, Fahrenheit, Celsius, -40, 0},
        {0, Kelvin, Celsius, -273.15, 0},
        {0, Kelvin, Fahrenheit, -459.67, 1e-13},
        {101.325, Kilopascal, Hectopascal, 1013.25, 0},
        {1500, Millivolt, Volt, 1.5, 0},
        {0.5, Kilolux, Lux, 500, 0},
        {2, Minute, Second, 120, 0},
    });
}

// NIST SP 811 (2008), appendix B.8; the digits that stand there.
TEST(Units, convertAsPublishedTablesSay) {
    expectAll({
        {1, InchOfMercury, Kilopascal, 3.386389, 5e-7},
        {1, PoundPerSquareInch, Kilopascal, 6.894757, 5e-7},
        {1, Knots, MetresPerSecond, 0.5144444, 5e-8},
        {1, MilesPerHour, MetresPerSecond, 0.44704, 5e-8},
        {1, InchOfMercuryPerThreeHours, HectopascalPerThreeHours, 33.86389, 5e-6},
        // The standard atmosphere, as pilots' tables have it.
        {1013.25, Hectopascal, InchOfMercury, 29.92, 5e-3},
        {1013.25, Hectopascal, PoundPerSquareInch, 14.696, 5e-4},
        {64, Knots, MilesPerHour, 74, 0.5},  // hurricane force
        {64, Knots, KilometresPerHour, 119, 0.5},
    });
}

TEST(Units, everyPairOfAQuantityComesBackFromTheOther) {
    int pairs = 0;
    for (const UnitRow& from : unitRows())
        for (const UnitRow& to : unitRows()) {
            ASSERT_EQ(convertible(from.unit, to.unit), convertible(to.unit, from.unit));
            if (!convertible(from.unit, to.unit)) {
                EXPECT_FALSE(convert(1, from.unit, to.unit));
                EXPECT_FALSE(convertDifference(1, from.unit, to.unit));
                continue;
            }
            ++pairs;
            // Where a scale begins elsewhere, what is near its zero has lost the digits behind that.
            const double shift = from.offset != 0 || to.offset != 0 ? 460 : 0;
            for (const double value : {-1048.5, -40.0, -1e-3, 0.0, 1e-9, 0.1, 1.0, 29.92, 1013.25, 7e8}) {
                const double there = *convert(value, from.unit, to.unit);
                EXPECT_NEAR(*convert(there, to.unit, from.unit), value, 1e-12 * (std::abs(value) + shift))
                    << value << " " << from.text << " by way of " << to.text;
                const double step = *convertDifference(value, from.unit, to.unit);
                EXPECT_NEAR(*convertDifference(step, to.unit, from.unit), value, 1e-12 * std::abs(value));
            }
        }
    EXPECT_GT(pairs, 80);
}

TEST(Units, aDifferenceOfTemperaturesHasNoZeroPoint) {
    EXPECT_DOUBLE_EQ(*convertDifference(10, Celsius, Fahrenheit), 18);
    EXPECT_DOUBLE_EQ(*convertDifference(9, Fahrenheit, Kelvin), 5);
    EXPECT_DOUBLE_EQ(*convertDifference(3.5, Celsius, Kelvin), 3.5);
    // Twenty degrees warmer is the same wherever one begins.
    EXPECT_NEAR(*convert(30, Celsius, Fahrenheit) - *convert(10, Celsius, Fahrenheit),
                *convertDifference(20, Celsius, Fahrenheit), 1e-12);
}

TEST(Units, theSameUnitGivesTheNumberItself) {
    for (const UnitRow& row : unitRows()) {
        EXPECT_EQ(*convert(0.1 + 0.2, row.unit, row.unit), 0.1 + 0.2);
        EXPECT_TRUE(std::isnan(*convert(std::nan(""), row.unit, row.unit)));
    }
    EXPECT_FALSE(convert(1, None, Celsius));
    EXPECT_FALSE(convert(1, Percent, None));
}

TEST(Units, theirOwnShortTextIsRead) {
    for (const UnitRow& row : unitRows()) {
        if (row.unit == None) continue;
        ASSERT_FALSE(row.text.empty());
        EXPECT_EQ(unitFromText(row.text), row.unit) << row.text;
    }
    EXPECT_EQ(unitText(None), "");
    EXPECT_FALSE(unitFromText(""));
}

TEST(Units, theirTextsAreReadAsPeopleAndSendersWriteThem) {
    const std::pair<const char*, Unit> written[] = {
        {"°C", Celsius},
        {"C", Celsius},
        {"c", Celsius},
        {"degree_C", Celsius},
        {"deg C", Celsius},
        {"℃", Celsius},
        {"F", Fahrenheit},
        {"degF", Fahrenheit},
        {"MPH", MilesPerHour},
        {"mi/h", MilesPerHour},
        {"mile_per_hour", MilesPerHour},
        {"km/h", KilometresPerHour},
        {"kph", KilometresPerHour},
        {"m/s", MetresPerSecond},
        {"mps", MetresPerSecond},
        {"kts", Knots},
        {"hPa", Hectopascal},
        {"mbar", Hectopascal},
        {"inHg", InchOfMercury},
        {"in Hg", InchOfMercury},
        {"in. Hg", InchOfMercury},
        {"W/m2", WattPerSquareMetre},
        {"Wpm2", WattPerSquareMetre},
        {"ug/m3", MicrogramPerCubicMetre},
        {"\xCE\xBCg/m³", MicrogramPerCubicMetre},
        {"inch_per_hour", InchPerHour},
        {"mm/hr", MillimetrePerHour},
        {"mbar/3h", HectopascalPerThreeHours},
        {"deg", Degree},
        {"%", Percent},
    };
    for (const auto& [text, unit] : written)
        EXPECT_EQ(unitFromText(text), unit) << text;
    for (const char* unknown : {"furlong", "°", "m/", "cb", "\xFF", "° ° C"})
        EXPECT_NE(unitFromText(unknown), Celsius) << unknown;
    EXPECT_FALSE(unitFromText("furlong"));
    EXPECT_FALSE(unitFromText("\xFF"));
    EXPECT_FALSE(unitFromText(std::string(1000, ' ') + "C"));
}

TEST(Units, aUserReadsEachQuantityInItsUnit) {
    EXPECT_EQ(shownUnit(Kelvin, UnitSystem::Metric), Celsius);
    EXPECT_EQ(shownUnit(Celsius, UnitSystem::Us), Fahrenheit);
    EXPECT_EQ(shownUnit(Knots, UnitSystem::Us), MilesPerHour);
    EXPECT_EQ(shownUnit(Hectopascal, UnitSystem::Us), InchOfMercury);
    EXPECT_EQ(shownUnit(Millimetre, UnitSystem::Us), Inch);
    EXPECT_EQ(shownUnit(Kilometre, UnitSystem::Us), Mile);
    EXPECT_EQ(shownUnit(Metre, UnitSystem::Us), Foot);
    EXPECT_EQ(shownUnit(Percent, UnitSystem::Us), Percent);
    EXPECT_EQ(shownUnit(None, UnitSystem::Us), None);
    for (const UnitRow& row : unitRows()) {
        // What is shown can always be made of what is held.
        EXPECT_TRUE(convertible(heldUnit(row.unit), shownUnit(row.unit, UnitSystem::Us))) << row.text;
        EXPECT_EQ(quantityOf(heldUnit(row.unit)), row.quantity) << row.text;
    }
}

}  // namespace
}  // namespace vigil
