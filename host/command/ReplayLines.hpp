#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "host/command/Replay.hpp"

namespace vigil {

/// What a replay says of a cycle as one JSON object and a line's end (docs/formats/replay.md).
std::string replayJson(const ReplayedCycle& cycle, bool trace);

/// The same for people.
std::string replayLine(
    const ReplayedCycle& cycle, bool trace,
    const std::function<std::string(Date)>& shown = [](Date date) { return date.description(); });

/// How the cycles of a replay ended.
struct ReplayCounts {
    std::size_t notifications = 0, fired = 0, missed = 0, waiting = 0;

    void add(const ReplayedCycle& cycle);
    /// "Fired 3 times in 96 notifications (missed 12, waiting 81)." and a line's end.
    std::string sentence() const;
};

}  // namespace vigil
