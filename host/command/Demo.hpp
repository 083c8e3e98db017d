#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "host/command/DemoLines.hpp"
#include "host/command/MonitorDraft.hpp"
#include "host/kit/LiveScripts.hpp"
#include "host/services/Player.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// A simulated station in fast motion with one monitor of the loaded module. Readings are announced on a
/// thread of their own, as those of a feed are; actions run on the calling thread, which is the main thread.
/// The station's clock goes with its readings; scripts really run.
class Demo {
  public:
    struct Options {
        MonitorDraft monitor;
        Player::Options player;  ///< what is heard and spoken goes through; its helper runs scripts, too
        std::string scriptsFolder;
        std::uint64_t seed = 1;
        std::size_t notifications = 80;
        double step = 300;                     ///< seconds of the station from one notification to the next
        std::chrono::milliseconds pause{250};  ///< between two notifications
    };
    /// Called on the calling thread of `run`.
    struct View {
        std::function<void(const DemoStep&)> step;
        std::function<void(const LiveScripts::Entry&)> script;
    };
    struct Counts {
        std::size_t fired = 0, missed = 0, waiting = 0, scripts = 0, scriptsFailed = 0;
        std::string status;  ///< the monitor's own text at the end
    };

    /// Runs it to its end. An error when the monitor does not come to be, does not start or throws.
    static Result<Counts> run(const Options& options, const View& view);
};

}  // namespace vigil
