#pragma once

#include <string>

#include "host_contract/HostWorld.hpp"
#include "platform/Export.hpp"

namespace vigil {

/// What the host's kit knows for all plug-ins of a world.
class VIGIL_KIT QRVKit {
  public:
    /// Path of the folder that holds the user's scripts, without a final "/".
    static std::string scriptsFolder(HostWorld& world);
};

/// Posted through the world's notification centre whenever an agent has new readings: the object is the
/// agent, the user information holds a `Readings` under `kDataKey`. On a thread of the host's choice, one at
/// a time for an agent.
extern VIGIL_KIT const char* const kAppRealTimeDataNotification;
inline constexpr const char* kDataKey = "data";

}  // namespace vigil
