#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/desktop/ColumnScan.hpp"
#include "host_contract/Readings.hpp"

namespace vigil::test {

/// Notifications with the times at which they were announced, in their order.
using Announced = std::vector<std::pair<Date, std::shared_ptr<const Readings>>>;

/// When a fresh monitor of the built module fires in a replay of the batches, in seconds since 2001. The
/// module must be loaded.
std::vector<double> replayedFires(const std::string& condition, const ScanRule& rule,
                                  const Announced& batches);

}  // namespace vigil::test
