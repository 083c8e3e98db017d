#pragma once

#include <memory>

#include "host_contract/Readings.hpp"

namespace vigil {

/// The same readings so many seconds later: their times, and what date readings tell. The key table is
/// shared.
std::shared_ptr<const Readings> shifted(const Readings& readings, double seconds);

}  // namespace vigil
