#pragma once

#include <limits>
#include <span>
#include <string_view>

#include "host/readings/Unit.hpp"
#include "host/readings/Units.hpp"
#include "host_contract/FourCharCode.hpp"

namespace vigil {

/// The values that a sensor can have sent on this planet; both ends belong to them.
struct Bounds {
    double least = -std::numeric_limits<double>::max();
    double most = std::numeric_limits<double>::max();

    /// False for what is not finite.
    bool hold(double value) const { return value >= least && value <= most; }
};

/// What the host knows of a reading that stations commonly send.
struct KnownReading {
    std::string_view key;
    std::string_view name;   ///< for people
    Unit held = Unit::None;  ///< of the value held inside; None for texts, dates, counts, indices
    FourCharCode kind = kNumericType;
    Bounds bounds{};  ///< in `held`

    /// The short unit in which people of that system read it.
    std::string_view unit(UnitSystem system) const { return unitText(shownUnit(held, system)); }
};

/// All of them, in the order in which a station lists them; those that come in channels (`soilTemp1` to
/// `soilTemp16`) behind the others. Any thread.
std::span<const KnownReading> knownReadings();

/// Nothing when the key is not among them. Any thread.
const KnownReading* knownReading(std::string_view key);

/// What any value of that quantity stays within, given in the quantity's held unit. Any thread.
Bounds boundsOf(Quantity quantity);

}  // namespace vigil
