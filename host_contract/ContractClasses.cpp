#include "host_contract/ContractClasses.hpp"

#include "host_contract/AgentProperty.hpp"
#include "platform/ClassRegistry.hpp"

namespace vigil {

void registerContractClasses() {
    ClassRegistry::shared().add("AgentProperty", &makeObject<AgentProperty>);
}

}  // namespace vigil
