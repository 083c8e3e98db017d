#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "host/kit/ScriptSink.hpp"
#include "host/services/ScriptRunner.hpp"

namespace vigil {

/// Runs that are remembered; older ones are forgotten.
inline constexpr std::size_t kScriptEntries = 200;

/// Runs a site's scripts and remembers what became of them. `accept` on the main thread, all else on any.
class LiveScripts : public ScriptSink {
  public:
    /// A run that has ended.
    struct Entry {
        std::string station;
        std::string monitor;
        std::vector<std::string> arguments;
        ScriptResult result;
    };
    /// Hears of each entry on the runner's thread. Must not throw or wait.
    using Told = std::function<void(const Entry&)>;

    explicit LiveScripts(ScriptRunner::Options options, Told told = {});

    std::optional<Error> accept(ScriptRequest request, const std::shared_ptr<const Object>& plugIn) override;

    /// The last runs, oldest first.
    std::vector<Entry> entries() const;
    /// Scripts of the station that wait.
    std::size_t queued(const std::string& station) const { return m_runner.queued(station); }
    /// Ends what runs and waits; every run has its entry when this returns.
    void stop() { m_runner.stop(); }

  private:
    void ended(Entry entry);

    const Told m_told;
    mutable std::mutex m_mutex;
    std::deque<Entry> m_entries;
    ScriptRunner m_runner;  // last: its thread uses the others
};

}  // namespace vigil
