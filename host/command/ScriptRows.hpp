#pragma once

#include <string>
#include <vector>

#include "host/command/OpenMonitor.hpp"

namespace vigil {

/// The names of the scripts that a monitor's rows run, in their order; empty for a row that names none.
std::vector<std::string> scriptNames(const OpenMonitor& monitor);

/// Whether the folder has a file of that name, a link to one included.
bool hasScript(const std::string& folder, const std::string& name);

}  // namespace vigil
