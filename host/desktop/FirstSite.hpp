#pragma once

#include <future>
#include <string>

#include "platform/Result.hpp"

namespace vigil {

/// Makes a site with a simulated station, for somebody who has none yet: true. False where there is a file of
/// that name. Waits for the disk. Any thread.
Result<bool> makeFirstSite(const std::string& path);

/// The same on a thread of its own, while a window is being put together.
std::future<Result<bool>> makeFirstSiteMeanwhile(const std::string& path);

/// Makes a site without a station.
Result<Done> makeEmptySite(const std::string& path);

}  // namespace vigil
