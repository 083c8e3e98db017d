#pragma once

#include <optional>
#include <string>

#include "host/services/ScriptRequest.hpp"
#include "host_contract/CycleObserver.hpp"
#include "platform/World.hpp"

namespace vigil {

/// What the demonstration shows of one notification.
struct DemoStep {
    LocalTime time;
    double windChill = 0;  ///< °C
    double windSpeed = 0;  ///< km/h
    CycleOutcome outcome = CycleOutcome::Missed;
    std::optional<LocalTime> next{};  ///< no fire before this moment
};

/// The line above the steps.
std::string demoHeading();

/// One line a step: the two readings with a bar each, in which the bound of the default condition is marked,
/// and the verdict. `colour` adds the terminal's colours.
std::string demoLine(const DemoStep& step, bool colour);

/// What became of a script, indented below the step that ran it: its last line of output and how it ended.
std::string demoScriptLine(const std::string& name, const ScriptResult& result, bool colour);

/// `value` between `low` and `high` as a bar of `width` cells; the cell of `bound` shows a mark.
std::string demoBar(double value, double low, double high, double bound, int width);

}  // namespace vigil
