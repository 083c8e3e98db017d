#pragma once

#include <string>

#include "platform/Result.hpp"

namespace vigil {

/// Makes a site with a simulated station, for somebody who has none yet. Waits for the disk.
Result<Done> makeFirstSite(const std::string& path);

/// Makes a site without a station.
Result<Done> makeEmptySite(const std::string& path);

}  // namespace vigil
