#pragma once

#include <vector>

#include "host_contract/Module.hpp"

namespace vigil {

/// Every class of the module that a host or an archive may name.
const std::vector<ModuleClass>& moduleClasses();

}  // namespace vigil
