#include "host/kit/KitClasses.hpp"

#include "conditions/ConditionPredicate.hpp"
#include "host_contract/ContractClasses.hpp"
#include "platform/ClassRegistry.hpp"

namespace vigil {

void registerKitClasses() {
    registerContractClasses();
    ClassRegistry::shared().add("ConditionPredicate", &makeObject<ConditionPredicate>);
}

}  // namespace vigil
