#include "host/command/ReplayLines.hpp"

#include <cmath>

#include <fmt/format.h>

#include "host/command/JsonText.hpp"

namespace vigil {
namespace {

constexpr int kFraction = 6;

std::string timeText(Date time) {
    const double seconds = time.secondsSinceReference();
    return time.isoText(seconds == std::floor(seconds) ? 0 : kFraction);
}

}  // namespace

std::string replayJson(const ReplayedCycle& cycle, bool trace) {
    std::string line = "{";
    if (!cycle.station.empty()) {
        line += "\"station\":";
        appendJsonText(line, cycle.station);
        line += ',';
    }
    line += fmt::format(R"("time":"{}","outcome":"{}")", timeText(cycle.time), outcomeName(cycle.outcome));
    if (trace) {
        line += ",\"inputs\":[";
        for (const std::string& key : cycle.inputs) {
            if (line.back() != '[') line += ',';
            appendJsonText(line, key);
        }
        line += "],\"status\":";
        appendJsonText(line, cycle.status);
    }
    line += cycle.next ? fmt::format(R"(,"next":"{}")", cycle.next->isoText(kFraction)) : ",\"next\":null";
    return line + "}\n";
}

std::string replayLine(const ReplayedCycle& cycle, bool trace,
                       const std::function<std::string(Date)>& shown) {
    std::string line = fmt::format("{}  {:<7}", shown(cycle.time), outcomeName(cycle.outcome));
    if (!cycle.station.empty()) line += "  " + cycle.station;
    if (cycle.outcome == CycleOutcome::Fired && cycle.next) line += "  next " + shown(*cycle.next);
    if (trace && cycle.outcome != CycleOutcome::Waiting)
        line += fmt::format("  {}", fmt::join(cycle.inputs, " "));
    while (line.back() == ' ')
        line.pop_back();
    return line + "\n";
}

void ReplayCounts::add(const ReplayedCycle& cycle) {
    ++notifications;
    if (cycle.outcome == CycleOutcome::Fired) ++fired;
    if (cycle.outcome == CycleOutcome::Missed) ++missed;
    if (cycle.outcome == CycleOutcome::Waiting) ++waiting;
}

std::string ReplayCounts::sentence() const {
    const std::string times = fired == 0   ? "Never fired"
                              : fired == 1 ? "Fired once"
                                           : fmt::format("Fired {} times", fired);
    return fmt::format("{} in {} notification{} (missed {}, waiting {}).\n", times, notifications,
                       notifications == 1 ? "" : "s", missed, waiting);
}

}  // namespace vigil
