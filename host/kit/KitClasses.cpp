#include "host/kit/KitClasses.hpp"

#include "host_contract/ContractClasses.hpp"

namespace vigil {

void registerKitClasses() {
    registerContractClasses();
}

}  // namespace vigil
