#pragma once

#include <string>

#include "platform/Export.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// Texts that drive other applications: the one for mail, the one for messages. Main thread.
class VIGIL_KIT AutomationScripts {
  public:
    virtual ~AutomationScripts();
    /// Runs the text of one script, or hands it on to be run; scripts run in the order of the calls. An error
    /// means that it will not run, and why.
    virtual Result<Done> run(const std::string& source) = 0;
};

}  // namespace vigil
