#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/services/ScriptRequest.hpp"
#include "platform/Date.hpp"

namespace vigil {

inline constexpr std::size_t kScriptsAtOnce = 4;           ///< helpers, and so scripts, that run side by side
inline constexpr std::size_t kScriptsQueuedAStation = 32;  ///< waiting, the running one apart

/// How long things may take. Tests shorten them.
struct ScriptTiming {
    std::chrono::milliseconds second{1000};        ///< what a second of a request's time-out is
    std::chrono::milliseconds termGrace{500};      ///< between the request to end (TERM) and KILL
    std::chrono::milliseconds leftoverGrace{200};  ///< for what a script leaves running when it ends
    std::chrono::milliseconds answerGrace{5000};   ///< for the helper's answer after all of these
};

/// Runs scripts, each in a helper process of its own. Scripts of a station run one after another in the order
/// handed over; those of different stations side by side, up to a bound. A script's processes end with it:
/// whatever it leaves running gets a moment (`leftoverGrace`) and is then ended too, also when it has moved
/// to another session.
///
/// Any thread may call anything; no call but `stop` waits. A thread of the runner's own starts the helpers
/// and calls `Ended`.
class ScriptRunner {
  public:
    /// Called exactly once a request, on the runner's thread (only after `stop` has returned on the thread
    /// that submits). Must not throw, wait for long or call `stop`; may submit.
    using Ended = std::function<void(const ScriptResult&)>;
    /// Called at most once a request, when its script has begun, on the runner's thread. May be empty. As
    /// `Ended` otherwise.
    using Started = std::function<void(Date)>;

    struct Options {
        std::string helper;           ///< path of `vigil-helper`; see `helperPath`
        std::function<Date()> clock;  ///< for the dates of results; any thread
        std::size_t atOnce = kScriptsAtOnce;
        std::size_t queuedAStation = kScriptsQueuedAStation;
        ScriptTiming timing{};
    };

    /// A script that runs now.
    struct Running {
        std::string station;
        std::string monitor;
        Date since;
    };

    explicit ScriptRunner(Options options);
    ScriptRunner(const ScriptRunner&) = delete;
    ScriptRunner& operator=(const ScriptRunner&) = delete;
    /// Stops.
    ~ScriptRunner();

    /// Hands a script over. A request that cannot be run, and the newest for a station whose queue is full,
    /// is refused; one that comes after `stop` is interrupted.
    void submit(ScriptRequest request, Ended ended, Started started = {});

    /// How many of the station's scripts wait.
    std::size_t queued(const std::string& station) const;
    /// In the order in which they were started.
    std::vector<Running> running() const;

    /// Ends everything: what waits is interrupted, what runs is asked to end (TERM) and then killed, at the
    /// latest after `deadline`. Returns when all is over and every request has its answer.
    void stop(std::chrono::milliseconds deadline = std::chrono::milliseconds(1000));

  private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// The path of `vigil-helper` for a program in that folder (without a final "/"): beside the program, where a
/// build puts it, or else where an installation does, in ../libexec/vigil. Where it is in neither, the first.
std::string helperPath(const std::string& programFolder);
/// The same for the running executable. Empty when Linux does not say where that is.
std::string helperPath();

/// What every script inherits of the host's environment: PATH, HOME, LANG, LC_*, the user's names, TZ, and
/// what leads to the user's screen, message bus and sound. Nothing else, so no secret of the host gets into
/// a script by accident.
std::vector<std::pair<std::string, std::string>> inheritedEnvironment();

}  // namespace vigil
