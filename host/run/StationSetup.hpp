#pragma once

#include <string>
#include <vector>

#include "host/readings/StationReadings.hpp"
#include "host/site/SiteRecords.hpp"

namespace vigil {

/// What a station's record means for its readings. `problems` gets a sentence for each choice that cannot be
/// understood; all others stand.
StationReadingsSettings readingsSettings(const StationRecord& record, std::vector<std::string>& problems);

}  // namespace vigil
