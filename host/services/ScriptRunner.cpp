#include "host/services/ScriptRunner.hpp"

#include <algorithm>
#include <stdexcept>

#include <sys/eventfd.h>
#include <unistd.h>

#include "host/services/ScriptRunner_State.hpp"

namespace vigil {
namespace {

ScriptResult unrun(ScriptResult::Outcome outcome, std::string failure, Date queued) {
    ScriptResult result;
    result.queued = result.started = result.ended = queued;
    result.outcome = outcome;
    result.failure = std::move(failure);
    return result;
}

}  // namespace

ScriptRunner::State::State(Options given)
    : options(std::move(given)),
      inherited(inheritedEnvironment()),
      wakeUp(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!wakeUp) throw std::runtime_error("no event descriptor for the script runner");
}

void ScriptRunner::State::wake() {
    const std::uint64_t one = 1;
    // fails only when it is set already, which wakes as well
    [[maybe_unused]] const ssize_t written = ::write(wakeUp.get(), &one, sizeof one);
}

void ScriptRunner::State::submit(ScriptRequest request, Ended ended, Started started) {
    const Date now = options.clock();
    std::string why = whyRefused(request);
    ScriptResult::Outcome outcome = ScriptResult::Refused;
    std::unique_lock lock(mutex);
    if (why.empty() && stopBy) {
        why = "the host has stopped";
        outcome = ScriptResult::Interrupted;
    } else if (why.empty()) {
        const auto station = queued.find(request.station);
        if (station != queued.end() && station->second >= options.queuedAStation)
            why = std::to_string(station->second) + " scripts of this station wait already";
    }
    if (!why.empty() && over) {
        lock.unlock();
        return ended(unrun(outcome, std::move(why), now));
    }
    if (!why.empty()) {
        answers.push_back({std::move(ended), unrun(outcome, std::move(why), now)});
    } else {
        ++queued[request.station];
        waiting.push_back({std::move(request), std::move(ended), now, std::move(started)});
    }
    lock.unlock();
    wake();
}

ScriptRunner::ScriptRunner(Options options) : m_state(std::make_unique<State>(std::move(options))) {
    m_state->thread = std::thread([state = m_state.get()] { state->loop(); });
}

ScriptRunner::~ScriptRunner() {
    stop();
}

void ScriptRunner::submit(ScriptRequest request, Ended ended, Started started) {
    m_state->submit(std::move(request), std::move(ended), std::move(started));
}

std::size_t ScriptRunner::queued(const std::string& station) const {
    const std::lock_guard lock(m_state->mutex);
    const auto found = m_state->queued.find(station);
    return found == m_state->queued.end() ? 0 : found->second;
}

std::vector<ScriptRunner::Running> ScriptRunner::running() const {
    const std::lock_guard lock(m_state->mutex);
    return m_state->running;
}

void ScriptRunner::stop(std::chrono::milliseconds deadline) {
    const auto until = State::Steady::now() + deadline;
    {
        const std::lock_guard lock(m_state->mutex);
        m_state->stopBy = std::min(m_state->stopBy.value_or(until), until);
    }
    m_state->wake();
    const std::lock_guard lock(m_state->joinMutex);
    if (m_state->thread.joinable()) m_state->thread.join();
}

}  // namespace vigil
