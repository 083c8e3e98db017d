#pragma once

#include <chrono>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "host/services/HelperProcess.hpp"
#include "host/services/ScriptRunner.hpp"
#include "host/services/UniqueFd.hpp"

namespace vigil {

// The insides of the runner. What the mutex guards any thread may touch; `runs` and what works on it belong
// to the runner's thread. No callback is called, no process started and nothing waited for under the mutex.
struct ScriptRunner::State {
    using Steady = std::chrono::steady_clock;

    struct Waiting {
        ScriptRequest request;
        Ended ended;
        Date queued;
        Started started{};
    };
    struct Run {
        Waiting of;
        std::string mark;
        HelperProcess helper;
        Steady::time_point deadline;  // for the helper's answer; then it is killed
        std::optional<Date> started{};
        std::optional<ScriptResult> result{};
        std::string killedBecause{};
        bool told = false;  // that the host stops
    };
    struct Answer {
        Ended ended;
        ScriptResult result;
    };

    explicit State(Options given);

    // Any thread.
    void submit(ScriptRequest request, Ended ended, Started started);
    void wake();

    // The runner's thread.
    void loop();
    void interruptWaiting();
    std::optional<Waiting> takeNext();
    void startWhatMay();
    void start(Waiting next);
    void wait();
    void serve(Run& run);
    bool isOver(Run& run);
    void finish(Run run);
    void answer(Waiting of, ScriptResult result, std::optional<Date> started);
    void noLongerRuns(const std::string& station);
    bool deliver();
    std::string nextMark();
    std::vector<std::string> environmentFor(const ScriptRequest& request, const std::string& mark) const;

    const Options options;
    const std::vector<std::pair<std::string, std::string>> inherited;
    UniqueFd wakeUp;

    mutable std::mutex mutex;
    std::list<Waiting> waiting;  // in the order handed over, all stations
    std::map<std::string, std::size_t> queued;
    std::vector<Running> running;  // of each station at most one
    std::vector<Answer> answers;
    std::optional<Steady::time_point> stopBy;
    bool over = false;  // the thread will do nothing more

    std::list<Run> runs;
    std::string markBase;
    unsigned long markCount = 0;

    std::mutex joinMutex;
    std::thread thread;
};

}  // namespace vigil
