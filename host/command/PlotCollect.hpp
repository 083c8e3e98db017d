#pragma once

#include <string>
#include <vector>

#include "host/command/HistoryChoice.hpp"
#include "host/command/MonitorReplay.hpp"
#include "host/command/Plot.hpp"

namespace vigil {

/// The named readings of a station in the history's range. Readings that never came give an error that names
/// those that did.
Result<Plot> plotOfStation(const OpenHistory& history, const StoredStation& station,
                           const std::vector<std::string>& keys);

/// A monitor in the history's range: the readings that its condition names, with thresholds, and what it did.
/// `replay` is fresh. Comparisons of dates are not drawn.
Result<Plot> plotOfMonitor(const OpenHistory& history, const StoredPlugIn& monitor, MonitorReplay& replay);

}  // namespace vigil
