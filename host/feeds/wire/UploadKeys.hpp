#pragma once

#include <optional>
#include <string_view>

#include "host/feeds/wire/WireKeys.hpp"

namespace vigil {

/// What the fields of an upload mean, in all of its forms. Units are those that the names promise, US ones in
/// most. Any thread.
std::span<const WireKey> uploadKeys();

/// A second rain gauge has fields of its own: where the first one is not there, they are the station's rain.
/// The field of the first gauge, or nothing when the name is not one of the second's.
std::optional<std::string_view> firstGaugeField(std::string_view name);

/// The metric unit in which some consoles send numbers under US names.
Unit metricInstead(Unit unit);

}  // namespace vigil
