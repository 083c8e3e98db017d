#include <cstdio>

#include <sys/random.h>

#include "host/services/ScriptRunner_State.hpp"
#include "host/services/ScriptSweep.hpp"
#include "host/services/ScriptWire.hpp"

// One run from its start to its answer, on the runner's thread.

namespace vigil {

using std::chrono::milliseconds;

std::string ScriptRunner::State::nextMark() {
    if (markBase.empty()) {
        unsigned long long bits = 0;
        // fewer than 256 bytes always come whole
        if (::getrandom(&bits, sizeof bits, 0) != sizeof bits)
            bits = static_cast<unsigned long long>(Steady::now().time_since_epoch().count());
        char text[32];
        std::snprintf(text, sizeof text, "%016llx", bits);
        markBase = text;
    }
    return markBase + "-" + std::to_string(++markCount);
}

std::vector<std::string> ScriptRunner::State::environmentFor(const ScriptRequest& request,
                                                             const std::string& mark) const {
    std::map<std::string, std::string> entries(inherited.begin(), inherited.end());
    for (const auto& [name, value] : request.environment)
        entries[name] = value;
    entries[kRunMark] = mark;
    std::vector<std::string> list;
    for (const auto& [name, value] : entries)
        list.push_back(name + "=" + value);
    return list;
}

void ScriptRunner::State::start(Waiting next) {
    const ScriptTiming& timing = options.timing;
    const auto length = [](milliseconds time) { return static_cast<std::uint32_t>(time.count()); };
    const milliseconds timeout = timing.second * next.request.timeoutSeconds;
    ScriptJob job;
    job.mark = nextMark();
    job.source = std::move(next.request.source);
    job.arguments = std::move(next.request.arguments);
    job.environment = environmentFor(next.request, job.mark);
    job.timeout = length(timeout);
    job.termGrace = length(timing.termGrace);
    job.leftoverGrace = length(timing.leftoverGrace);
    Result<HelperProcess> helper = HelperProcess::start(options.helper, "script", encodeScriptJob(job));
    if (!helper) {
        ScriptResult result;
        result.failure = helper.error().message;
        noLongerRuns(next.request.station);
        return answer(std::move(next), std::move(result), std::nullopt);
    }
    const auto deadline =
        Steady::now() + timeout + timing.termGrace + timing.leftoverGrace + timing.answerGrace;
    runs.push_back({std::move(next), job.mark, std::move(helper).value(), deadline});
    serve(runs.back());
}

void ScriptRunner::State::finish(Run run) {
    if (!run.result) {
        // nobody has cleared up
        sweepScript(run.mark);
        ScriptResult result;
        const bool began = run.started || run.told;
        result.outcome = began ? ScriptResult::Interrupted : ScriptResult::NotStarted;
        result.failure = run.killedBecause;
        if (result.failure.empty() && run.told) result.failure = "the host stopped as it was being started";
        if (result.failure.empty()) result.failure = "its helper " + run.helper.ending().value_or("ended");
        run.result = std::move(result);
    }
    noLongerRuns(run.of.request.station);
    answer(std::move(run.of), std::move(*run.result), run.started);
}

void ScriptRunner::State::noLongerRuns(const std::string& station) {
    const std::lock_guard lock(mutex);
    std::erase_if(running, [&](const Running& now) { return now.station == station; });
}

void ScriptRunner::State::answer(Waiting of, ScriptResult result, std::optional<Date> started) {
    result.queued = of.queued;
    result.ended = options.clock();
    const bool ran = started && result.outcome != ScriptResult::NotStarted;
    result.started = ran ? *started : result.ended;
    const std::lock_guard lock(mutex);
    answers.push_back({std::move(of.ended), std::move(result)});
}

}  // namespace vigil
