#pragma once

#include <chrono>
#include <optional>
#include <vector>

#include "host/helper/OutputTail.hpp"
#include "host/helper/ScriptProcess.hpp"
#include "host/services/ScriptWire.hpp"
#include "host/services/UniqueFd.hpp"

namespace vigil {

/// Watches a script from its start until nothing of it is left.
///
///     Runs       until it ends (then Leftovers), its time is over or the host is gone (then Ending)
///     Leftovers  what it left running, or what holds its output open, gets `leftoverGrace`
///     Ending     everything has had TERM and gets `termGrace`
///
/// After both, whatever is left is killed.
class ScriptWatch {
  public:
    ScriptWatch(const ScriptJob& job, ScriptProcess process, int host);

    /// Returns the result, without dates, when all processes of the script are gone.
    ScriptResult run();

  private:
    using Clock = std::chrono::steady_clock;
    enum class Phase { Runs, Leftovers, Ending, Over };

    void wait();
    void readOutput(int reads);
    bool hasEnded() const;
    bool isAlone() const;
    void advance();
    void end(ScriptResult::Outcome because);
    void enter(Phase phase, std::uint32_t milliseconds);
    bool killAll();
    ScriptResult result(bool allGone);

    const ScriptJob& m_job;
    ScriptProcess m_script;
    int m_host;
    UniqueFd m_childSignals;
    Phase m_phase = Phase::Runs;
    Clock::time_point m_deadline;
    std::optional<ScriptResult::Outcome> m_endedBecause;  // where the script did not end of itself
    bool m_hostGone = false;
    bool m_outputOver = false;
    OutputTail m_output;
};

}  // namespace vigil
