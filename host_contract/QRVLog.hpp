#pragma once

#include <string_view>

#include "platform/Export.hpp"

namespace vigil {

class HostWorld;

/// The log that a host shares with its plug-ins. Any thread.
class VIGIL_KIT QRVLog {
  public:
    virtual ~QRVLog();

    /// The one log of a world.
    static QRVLog& sharedLog(HostWorld& world);

    /// Takes a message of a level. (Keyword form: logLevel:message:)
    virtual void logLevel(int level, std::string_view message) = 0;

    /// Whether messages of that level are taken at all. One that answers false is never sent one, so that a
    /// line that nobody reads is not built either.
    virtual bool takesLevel(int level) const;
};

}  // namespace vigil
