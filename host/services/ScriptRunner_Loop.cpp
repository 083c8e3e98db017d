#include <algorithm>

#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include "host/services/ScriptRunner_State.hpp"
#include "host/services/ScriptWire.hpp"

// The runner's thread: waits for helpers and requests, never for anything else.

namespace vigil {

using std::chrono::milliseconds;

void ScriptRunner::State::loop() {
    // the process's signals are for the threads that want them
    sigset_t all;
    sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, nullptr);
    while (true) {
        startWhatMay();
        // an answer may bring a new request, so that nothing is waited for until there is none
        if (deliver()) continue;
        {
            const std::lock_guard lock(mutex);
            over = stopBy && runs.empty() && waiting.empty() && answers.empty();
            if (over) return;
        }
        wait();
        for (auto run = runs.begin(); run != runs.end();) {
            serve(*run);
            const auto next = std::next(run);
            if (isOver(*run)) {
                Run ended = std::move(*run);
                runs.erase(run);
                finish(std::move(ended));
            }
            run = next;
        }
    }
}

bool ScriptRunner::State::deliver() {
    std::vector<Answer> ready;
    {
        const std::lock_guard lock(mutex);
        ready.swap(answers);
    }
    for (Answer& one : ready)
        one.ended(one.result);
    return !ready.empty();
}

// Once the host stops.
void ScriptRunner::State::interruptWaiting() {
    std::list<Waiting> left;
    {
        const std::lock_guard lock(mutex);
        if (!stopBy) return;
        left.swap(waiting);
        queued.clear();
    }
    for (Waiting& one : left) {
        ScriptResult result;
        result.outcome = ScriptResult::Interrupted;
        result.failure = "the host stopped before its turn came";
        answer(std::move(one), std::move(result), std::nullopt);
    }
}

std::optional<ScriptRunner::State::Waiting> ScriptRunner::State::takeNext() {
    const std::lock_guard lock(mutex);
    if (stopBy || running.size() >= options.atOnce) return std::nullopt;
    const auto isFree = [this](const Waiting& one) {
        return std::none_of(running.begin(), running.end(),
                            [&](const Running& now) { return now.station == one.request.station; });
    };
    const auto next = std::find_if(waiting.begin(), waiting.end(), isFree);
    if (next == waiting.end()) return std::nullopt;
    Waiting taken = std::move(*next);
    waiting.erase(next);
    const auto count = queued.find(taken.request.station);
    if (--count->second == 0) queued.erase(count);
    running.push_back({taken.request.station, taken.request.monitor, options.clock()});
    return taken;
}

void ScriptRunner::State::startWhatMay() {
    interruptWaiting();
    while (std::optional<Waiting> next = takeNext())
        start(std::move(*next));
}

void ScriptRunner::State::wait() {
    std::vector<pollfd> fds{{wakeUp.get(), POLLIN, 0}};
    std::optional<Steady::time_point> until;
    const auto before = [&until](Steady::time_point time) { until = std::min(until.value_or(time), time); };
    bool mayBeKilled = false;
    for (const Run& run : runs) {
        fds.push_back({run.helper.socket(), run.helper.socketEvents(), 0});
        fds.push_back({run.helper.process(), POLLIN, 0});
        if (!run.killedBecause.empty()) continue;
        before(run.deadline);
        mayBeKilled = true;
    }
    {
        const std::lock_guard lock(mutex);
        if (stopBy && mayBeKilled) before(*stopBy);
    }
    int limit = -1;
    if (until) {
        const auto left = std::chrono::ceil<milliseconds>(*until - Steady::now());
        limit = static_cast<int>(std::max<milliseconds::rep>(left.count(), 0));
    }
    ::poll(fds.data(), fds.size(), limit);
    std::uint64_t count = 0;
    // fails only when nobody has set it
    [[maybe_unused]] const ssize_t taken = ::read(wakeUp.get(), &count, sizeof count);
}

void ScriptRunner::State::serve(Run& run) {
    run.helper.exchange();
    while (const std::optional<std::string> message = run.helper.next()) {
        if (isScriptStarts(*message)) {
            run.started = options.clock();
            if (run.of.started) run.of.started(*run.started);
        } else {
            run.result = decodeScriptResult(*message);
        }
    }
    std::optional<Steady::time_point> stopTime;
    {
        const std::lock_guard lock(mutex);
        stopTime = stopBy;
    }
    if (stopTime && !run.told) {
        run.helper.closeInput();
        run.told = true;
    }
    if (!run.killedBecause.empty()) return;
    const auto now = Steady::now();
    if (run.helper.broken())
        run.killedBecause = "its helper sent what cannot be understood";
    else if (stopTime && now >= *stopTime)
        run.killedBecause = "the host stopped and its helper did not end in time";
    else if (now >= run.deadline)
        run.killedBecause = "its helper did not answer in time and was ended";
    if (!run.killedBecause.empty()) run.helper.kill();
}

bool ScriptRunner::State::isOver(Run& run) {
    if (!run.helper.ending()) return false;
    serve(run);  // what it said last
    return true;
}

}  // namespace vigil
