#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/kit/Conformance_Report.hpp"
#include "host/kit/PlugInLoader.hpp"
#include "host_contract/Readings.hpp"

namespace vigil {

/// Puts a class of plug-ins through its life, in a world whose clock is turned by hand.
void checkLife(const LoadedModule& module, const std::string& className, ConformanceReport& report);

/// Readings as stations send them on their worst days: none, NaN, infinities, a key twice, texts, dates, long
/// names. Each is one notification.
std::vector<std::shared_ptr<const Readings>> oddBatches(Date time);

}  // namespace vigil
