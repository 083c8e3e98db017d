#pragma once

#include <span>
#include <string_view>

#include "host/readings/Unit.hpp"
#include "host_contract/FourCharCode.hpp"

namespace vigil {

/// What the host knows of a reading that stations commonly send.
struct KnownReading {
    std::string_view key;
    std::string_view name;  ///< for people
    std::string_view
        metric;           ///< short unit of the value held inside; empty for texts, dates, counts, indices
    std::string_view us;  ///< short unit of people who use US units
    FourCharCode kind = kNumericType;

    std::string_view unit(UnitSystem system) const { return system == UnitSystem::Us ? us : metric; }
};

/// All of them, in the order in which a station lists them. Any thread.
std::span<const KnownReading> knownReadings();

/// Nothing when the key is not among them. Any thread.
const KnownReading* knownReading(std::string_view key);

}  // namespace vigil
