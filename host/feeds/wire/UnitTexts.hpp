#pragma once

#include <string_view>

#include "host/readings/Unit.hpp"

namespace vigil {

/// The unit that people write like this ("°C", "km/h", "kph"); None where it is none of the known ones. Any
/// thread.
Unit unitOfText(std::string_view text);

}  // namespace vigil
