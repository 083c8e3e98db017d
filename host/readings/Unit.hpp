#pragma once

#include <cstdint>

namespace vigil {

/// The unit of a number. Those of one quantity convert into each other (Units.hpp).
enum class Unit : std::uint8_t {
    None,  ///< as it stands: an index, a count, nothing known
    Celsius,
    Fahrenheit,
    Kelvin,
    MetresPerSecond,
    KilometresPerHour,
    MilesPerHour,
    Knots,
    Hectopascal,
    Kilopascal,
    InchOfMercury,
    PoundPerSquareInch,
    Millimetre,
    Centimetre,
    Inch,
    MillimetrePerHour,
    CentimetrePerHour,
    InchPerHour,
    Metre,
    Foot,
    Kilometre,
    Mile,
    Percent,
    Degree,
    WattPerSquareMetre,
    Lux,
    Kilolux,
    MicrogramPerCubicMetre,
    PartsPerMillion,
    Volt,
    Millivolt,
    Second,
    Minute,
    HectopascalPerThreeHours,
    InchOfMercuryPerThreeHours,
};

/// Which units a user wants to see.
enum class UnitSystem : std::uint8_t { Metric, Us };

}  // namespace vigil
