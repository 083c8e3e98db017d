#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "conditions/ConditionNode.hpp"

namespace vigil {

/// The keys that a condition asks for.
std::set<std::string> keysOf(const ConditionNode& condition);

/// "note: no known reading is called windspeed; did you mean windSpeed?" where a key is none of the readings
/// that the host knows but nearly one of them; else empty, since a station may send readings of any name.
/// `own` are keys that the station has beside them.
std::string keyNote(std::string_view key, const std::vector<std::string>& own = {});

/// The keys of rolling readings as a site keeps them; a text that is none is passed over.
std::vector<std::string> rollingKeys(const std::vector<std::string>& choices);

}  // namespace vigil
