#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/readings/Unit.hpp"

namespace vigil {

/// The unit systems of the weather program WeeWX, by their numbers in `usUnits`.
enum class WeewxSystem { Us = 1, Metric = 16, MetricWx = 17 };

/// Nothing when there is no such number.
std::optional<WeewxSystem> weewxSystem(double number);
/// "us", "metric", "metricwx"
std::optional<WeewxSystem> weewxSystemNamed(std::string_view name);

/// What a name of its packets means.
struct WeewxKey {
    std::string key;
    Unit unit = Unit::None;
    std::string_view unitText{};  ///< where the unit is none that the host knows
    /// The value has a unit, but neither the name nor a system says which.
    bool unitUnknown = false;
};

/// `name` may end with a unit ("outTemp_F"), which then holds; else the system tells. Any thread.
WeewxKey weewxKey(std::string_view name, std::optional<WeewxSystem> system);

/// Whether a name is one that WeeWX gives, with or without a unit.
bool isWeewxName(std::string_view name);

}  // namespace vigil
