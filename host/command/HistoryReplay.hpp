#pragma once

#include <string>

#include "host/command/HistoryChoice.hpp"

namespace vigil {

struct HistoryReplayOptions {
    HistoryChoice choice;
    std::string monitor;
    bool trace = false;
    bool json = false;
    bool log = false;
};

/// Replays a monitor of a site over its stored history and says whether it fired then when it fires now. The
/// status is No where the two disagree.
void replayHistory(const HistoryReplayOptions& options, CommandContext& context);

}  // namespace vigil
