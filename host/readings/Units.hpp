#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "host/readings/Unit.hpp"

namespace vigil {

/// What a unit measures, as far as it decides in which unit people want to read it: rain is shown in
/// millimetres or inches, a distance in kilometres or miles, though both are lengths.
enum class Quantity : std::uint8_t {
    None,
    Temperature,
    Speed,
    Pressure,
    PressureTrend,
    Depth,
    DepthRate,
    Height,
    Distance,
    Percentage,
    Direction,
    Irradiance,
    Illuminance,
    MassConcentration,
    VolumeFraction,
    Voltage,
    Duration,
};

// Pure functions and constant tables, any thread.

/// None for Unit::None.
Quantity quantityOf(Unit unit);

/// Whether a number in `from` can be said in `to`. A unit always converts into itself, None included; all
/// lengths convert into each other.
bool convertible(Unit from, Unit to);

/// A point on a scale: 0 °C is 32 °F. The number itself, to the bit, where both units are the same; nothing
/// where they do not convert. Not finite stays not finite.
std::optional<double> convert(double value, Unit from, Unit to);

/// A difference or a step on a scale: 10 °C warmer is 18 °F warmer. As `convert` for scales that begin at 0.
std::optional<double> convertDifference(double value, Unit from, Unit to);

/// The short text that stands behind a number: "°C", "m/s", "hPa/3 h"; empty for None.
std::string_view unitText(Unit unit);

/// A unit as people, files and senders write it: "°C", "C", "degF", "km/h", "kph", "inHg", "in Hg", "mbar",
/// "W/m²", "Wpm2", "ug/m3", "mm_per_hour". Case, blanks, full stops and underscores do not count. Nothing for
/// an empty text and for one that names no unit of the table.
std::optional<Unit> unitFromText(std::string_view text);

/// The unit in which people of that system read what is given in `unit`: mph for km/h under Us, the unit
/// itself where both systems use it. None for None.
Unit shownUnit(Unit unit, UnitSystem system);

/// The unit in which a station's table holds what is given in `unit`: the metric one.
Unit heldUnit(Unit unit);

}  // namespace vigil
