#pragma once

#include "platform/Export.hpp"

namespace vigil {

/// Makes the classes of the contract that archives hold (`AgentProperty`) known to the `ClassRegistry`. May
/// be called as often as one likes. Any thread.
VIGIL_KIT void registerContractClasses();

}  // namespace vigil
