#pragma once

#include <string>

#include "host_contract/QRVLog.hpp"
#include "platform/World.hpp"

namespace vigil {

class PlugInHost;

/// A world with the host's own services. Every world in which plug-ins live is one.
class VIGIL_KIT HostWorld : public World {
  public:
    virtual QRVLog& log() = 0;
    virtual std::string scriptsFolder() = 0;
    virtual PlugInHost& plugInHost() = 0;

    /// The open world as a host's, or nothing.
    static HostWorld* current();
};

/// The host's word on the life of its plug-ins. Main thread.
class VIGIL_KIT PlugInHost {
  public:
    virtual ~PlugInHost();
    /// Whether a plug-in of that class comes to be at all.
    virtual bool admits(const std::string& className);
    /// What stands in the way of starting or stopping, for the caller to pass on; nothing means success.
    virtual std::shared_ptr<Object> startResult(const Object& plugIn);
    virtual std::shared_ptr<Object> stopResult(const Object& plugIn);
};

}  // namespace vigil
