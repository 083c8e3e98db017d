#include "host/readings/Units_Table.hpp"

#include <cstddef>

namespace vigil {
namespace {

// Where the constants come from. All but the roundings of binary numbers are exact.
//
// - inch = 25.4 mm, foot = 12 inches, mile = 5280 feet = 1609.344 m: international yard and pound agreement
// of
//   1959; NIST SP 811 (2008), appendix B.8.
// - knot = 1852 m an hour: the international nautical mile, Monaco 1929; NIST SP 811, B.8.
// - inch of mercury, conventional: 25.4 mm of a liquid of 13 595.1 kg/m³ under 9.806 65 m/s² (standard
//   gravity, 3rd CGPM, 1901), which is 3386.388 640 341 Pa; NIST SP 811, B.8 prints 3.386 389 E+03.
// - pound-force per square inch: 0.453 592 37 kg (1959) under standard gravity on 0.0254 m squared, that is
//   4.448 221 615 260 5 N / 0.000 645 16 m²; NIST SP 811, B.8 prints 6.894 757 E+03.
// - t/°C = (t/°F - 32) / 1.8 and t/°C = T/K - 273.15: NIST SP 811, B.9 and 8.5.

constexpr double kFeetPerMile = 5280;
constexpr double kInchesPerFoot = 12;
constexpr double kMillimetresPer5Inches = 127;  // of 1959
constexpr double kSecondsPerHour = 3600;
constexpr double kNauticalMile = 1852;                        // m
constexpr double kHectopascalPer1e11InchHg = 3386388640341.;  // 33.863 886 403 41 hPa
constexpr double kNewtonPer1e13PoundForce = 44482216152605.;  // 4.448 221 615 260 5 N
constexpr double kSquareMetrePer1e8SquareInch = 64516.;       // 0.000 645 16 m²

// m, of which a mile has 1609.344
constexpr double kMilePer5000 = kFeetPerMile * kInchesPerFoot * kMillimetresPer5Inches;

using enum Unit;

constexpr UnitRow kRows[] = {
    {None, Quantity::None, None, "", None, None},
    {Celsius, Quantity::Temperature, Celsius, "°C", Celsius, Fahrenheit},
    {Fahrenheit, Quantity::Temperature, Celsius, "°F", Celsius, Fahrenheit, 5, 9, 32},
    {Kelvin, Quantity::Temperature, Celsius, "K", Celsius, Fahrenheit, 1, 1, 273.15},
    {MetresPerSecond, Quantity::Speed, MetresPerSecond, "m/s", MetresPerSecond, MilesPerHour},
    {KilometresPerHour, Quantity::Speed, MetresPerSecond, "km/h", MetresPerSecond, MilesPerHour, 1000,
     kSecondsPerHour},
    {MilesPerHour, Quantity::Speed, MetresPerSecond, "mph", MetresPerSecond, MilesPerHour, kMilePer5000,
     5000 * kSecondsPerHour},
    {Knots, Quantity::Speed, MetresPerSecond, "kn", MetresPerSecond, MilesPerHour, kNauticalMile,
     kSecondsPerHour},
    {Hectopascal, Quantity::Pressure, Hectopascal, "hPa", Hectopascal, InchOfMercury},
    {Kilopascal, Quantity::Pressure, Hectopascal, "kPa", Hectopascal, InchOfMercury, 10},
    {InchOfMercury, Quantity::Pressure, Hectopascal, "inHg", Hectopascal, InchOfMercury,
     kHectopascalPer1e11InchHg, 1e11},
    {PoundPerSquareInch, Quantity::Pressure, Hectopascal, "psi", Hectopascal, InchOfMercury,
     kNewtonPer1e13PoundForce, 1e7 * kSquareMetrePer1e8SquareInch},
    {Millimetre, Quantity::Depth, Metre, "mm", Millimetre, Inch, 1, 1000},
    {Centimetre, Quantity::Depth, Metre, "cm", Millimetre, Inch, 1, 100},
    {Inch, Quantity::Depth, Metre, "in", Millimetre, Inch, kMillimetresPer5Inches, 5000},
    {MillimetrePerHour, Quantity::DepthRate, MillimetrePerHour, "mm/h", MillimetrePerHour, InchPerHour},
    {CentimetrePerHour, Quantity::DepthRate, MillimetrePerHour, "cm/h", MillimetrePerHour, InchPerHour, 10},
    {InchPerHour, Quantity::DepthRate, MillimetrePerHour, "in/h", MillimetrePerHour, InchPerHour,
     kMillimetresPer5Inches, 5},
    {Metre, Quantity::Height, Metre, "m", Metre, Foot},
    {Foot, Quantity::Height, Metre, "ft", Metre, Foot, kInchesPerFoot* kMillimetresPer5Inches, 5000},
    {Kilometre, Quantity::Distance, Metre, "km", Kilometre, Mile, 1000},
    {Mile, Quantity::Distance, Metre, "mi", Kilometre, Mile, kMilePer5000, 5000},
    {Percent, Quantity::Percentage, Percent, "%", Percent, Percent},
    {Degree, Quantity::Direction, Degree, "°", Degree, Degree},
    {WattPerSquareMetre, Quantity::Irradiance, WattPerSquareMetre, "W/m²", WattPerSquareMetre,
     WattPerSquareMetre},
    {Lux, Quantity::Illuminance, Lux, "lx", Lux, Lux},
    {Kilolux, Quantity::Illuminance, Lux, "klx", Lux, Lux, 1000},
    {MicrogramPerCubicMetre, Quantity::MassConcentration, MicrogramPerCubicMetre, "µg/m³",
     MicrogramPerCubicMetre, MicrogramPerCubicMetre},
    {PartsPerMillion, Quantity::VolumeFraction, PartsPerMillion, "ppm", PartsPerMillion, PartsPerMillion},
    {Volt, Quantity::Voltage, Volt, "V", Volt, Volt},
    {Millivolt, Quantity::Voltage, Volt, "mV", Volt, Volt, 1, 1000},
    {Second, Quantity::Duration, Second, "s", Second, Second},
    {Minute, Quantity::Duration, Second, "min", Minute, Minute, 60},
    {HectopascalPerThreeHours, Quantity::PressureTrend, HectopascalPerThreeHours, "hPa/3 h",
     HectopascalPerThreeHours, InchOfMercuryPerThreeHours},
    {InchOfMercuryPerThreeHours, Quantity::PressureTrend, HectopascalPerThreeHours, "inHg/3 h",
     HectopascalPerThreeHours, InchOfMercuryPerThreeHours, kHectopascalPer1e11InchHg, 1e11},
};

constexpr bool followsTheEnumeration() {
    for (std::size_t i = 0; i < std::size(kRows); ++i)
        if (static_cast<std::size_t>(kRows[i].unit) != i) return false;
    return std::size(kRows) == static_cast<std::size_t>(InchOfMercuryPerThreeHours) + 1;
}
static_assert(followsTheEnumeration());

}  // namespace

std::span<const UnitRow> unitRows() {
    return kRows;
}

const UnitRow& unitRow(Unit unit) {
    return kRows[static_cast<std::size_t>(unit)];
}

}  // namespace vigil
