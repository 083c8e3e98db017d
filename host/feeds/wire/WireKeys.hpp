#pragma once

#include <span>
#include <string>
#include <string_view>

#include "host/readings/Unit.hpp"

namespace vigil {

/// What a name on the wire means.
struct WireKey {
    enum class Kind {
        Number,
        Flag,  ///< a battery: 0 is good, 1 is low
        Text,
        UnixTime,  ///< seconds since 1970
        Protocol,  ///< of the transmission, not of the weather: no reading
        Hidden,    ///< a number about the device, not shown unless asked for
    };
    std::string_view wire;  ///< "#" stands for a number of one or two digits
    std::string_view key;   ///< "#" stands for the same number; empty: the name as it was sent
    Unit unit = Unit::None;
    Kind kind = Kind::Number;
};

/// The entry of a name, and its key with the number put in; no entry where the name is not in the table. An
/// entry without "#" goes before one with it. Any thread.
struct WireKeyFound {
    const WireKey* entry = nullptr;
    std::string key{};
};
WireKeyFound findWireKey(std::span<const WireKey> table, std::string_view name);

/// A unit at the end of a name.
struct UnitSuffix {
    std::string_view text;
    Unit unit;
};

/// The longest suffix of the table that the name ends with and that leaves something of it; else nothing.
const UnitSuffix* findUnitSuffix(std::span<const UnitSuffix> table, std::string_view name);

}  // namespace vigil
