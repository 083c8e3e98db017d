#pragma once

#include <memory>
#include <string>

#include "host_contract/QRVPlugIn.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// Loads the monitor's module: the bundle "VigilPlugIn" below `../lib/vigil` of the program's folder. Loading
/// it twice is loading it once. An error says which file stood in the way and what to do.
Result<Done> loadMonitorModule(const std::string& programFolder);

/// A monitor from its keyed archive, for a station, in the station's world. Needs the module. Main thread.
Result<std::shared_ptr<QRVPlugIn>> monitorFromArchive(const std::string& archive,
                                                      const std::shared_ptr<QRVAgentPlugIn>& station);

/// What the monitor says of its state; empty where it has no such property. Any thread.
std::string statusText(QRVPlugIn& monitor);

}  // namespace vigil
