#pragma once

#include <string>

#include "plugins/VigilPlugIn/VigilPlugIn/ChangedReadings.hpp"

namespace vigil {

/// Memory that a monitor keeps from cycle to cycle, so that a cycle allocates nothing.
struct CycleScratch {
    ChangedReadings changed;
    std::string line;
};

}  // namespace vigil
