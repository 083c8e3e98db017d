#pragma once

#include <string>
#include <vector>

#include "host/command/OpenMonitor.hpp"
#include "host/site/SiteRecords.hpp"
#include "platform/Date.hpp"

namespace vigil {

/// What the user is told besides of a monitor that was made or changed, a sentence each.
struct MonitorNotes {
    std::string scriptsFolder{};
    Date now{};
    bool judgesDefault = false;  ///< it was made without a condition
    bool waitChanged = false;    ///< its wait was changed
};

/// Scripts that are not there, keys that are nearly those of known readings, a wait that goes on, and what a
/// new monitor still lacks.
std::vector<std::string> monitorNotes(const OpenMonitor& monitor, const StationRecord& station,
                                      const MonitorNotes& how);

}  // namespace vigil
