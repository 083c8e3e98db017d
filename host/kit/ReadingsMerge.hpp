#pragma once

#include <cstdint>
#include <memory>

#include "host_contract/Readings.hpp"

namespace vigil {

/// `current` with the readings of `batch` put over it: of each key the last reading, new keys behind the
/// others as long as there are at most `mostKeys`; `dropped` grows by the readings without a place. The table
/// stays the same object unless keys came in; a batch that has all keys is taken as it is.
std::shared_ptr<const Readings> merged(const std::shared_ptr<const Readings>& current,
                                       const std::shared_ptr<const Readings>& batch, std::size_t mostKeys,
                                       std::uint64_t& dropped);

}  // namespace vigil
