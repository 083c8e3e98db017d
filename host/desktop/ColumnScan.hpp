#pragma once

#include <cstdint>
#include <vector>

#include "conditions/ConditionNode.hpp"
#include "host/desktop/Columns.hpp"

namespace vigil {

/// What a monitor is told to do.
struct ScanRule {
    /// Minutes to wait after a fire, as the monitor counts them: through single precision.
    double retriggerMinutes = 1;
    bool onlyOnChange = false;
};

/// From the first to the last notification of a stretch, in seconds since 2001.
struct Stretch {
    double from = 0;
    double to = 0;
};

struct ScanResult {
    std::vector<double> fires;  ///< when, in seconds since 2001
    std::vector<Stretch> held;  ///< where all readings together say yes, waits included
    std::size_t heldRows = 0;   ///< notifications of those
};

/// When a fresh monitor with that condition would have fired over the columns, had its actions taken no time:
/// the same fires as the monitor's own module tells in a replay. Keys that are not among the columns are not
/// there, nor are texts that the columns do not keep. Any thread.
ScanResult scan(const Columns& columns, const ConditionNode& condition, const ScanRule& rule);

/// The seconds of a wait.
double waitSeconds(double minutes);

}  // namespace vigil
