#pragma once

#include <memory>
#include <string>

#include "conditions/ConditionPredicate.hpp"
#include "platform/Property.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/ChangedReadings.hpp"

namespace vigil {

/// Memory that a monitor keeps from cycle to cycle, so that a cycle allocates nothing and looks nothing up.
struct CycleScratch {
    Remembered<std::shared_ptr<ConditionPredicate>> predicate;
    std::shared_ptr<ConditionPredicate> bound;      ///< whose binding it is
    std::shared_ptr<const BoundCondition> binding;  ///< to the table of the last batch
    ChangedReadings changed;
    std::string line;
};

}  // namespace vigil
