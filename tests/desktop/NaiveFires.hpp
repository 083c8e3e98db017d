#pragma once

#include <string>
#include <vector>

#include "tests/desktop/ReplayedFires.hpp"

namespace vigil::test {

/// When a fresh monitor fires, found out in the simplest way there is: the condition read anew for each
/// notification, all readings copied. Shares no code with the module nor with the scan of columns.
std::vector<double> naiveFires(const std::string& condition, const ScanRule& rule, const Announced& batches);

}  // namespace vigil::test
