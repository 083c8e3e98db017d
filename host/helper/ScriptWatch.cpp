#include "host/helper/ScriptWatch.hpp"

#include <algorithm>
#include <cerrno>

#include <poll.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <sys/wait.h>

#include "host/helper/Children.hpp"

namespace vigil {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kKillTime{1000};  // for what KILL has hit to be gone; only a stuck disk takes so long
constexpr milliseconds kKillLook{20};    // an orphan that comes to us as its parent dies sends no signal
constexpr std::size_t kChunk = 64 << 10;
constexpr int kLastReads = 64;  // after the end: a pipe holds less, unless somebody beyond our reach writes

UniqueFd childSignals() {
    sigset_t child;
    sigemptyset(&child);
    sigaddset(&child, SIGCHLD);
    return UniqueFd(::signalfd(-1, &child, SFD_CLOEXEC | SFD_NONBLOCK));
}

// True once a signal was there; takes all that are.
bool takeSignals(int fd) {
    signalfd_siginfo signals[8];
    bool any = false;
    while (::read(fd, signals, sizeof signals) > 0)
        any = true;
    return any;
}

}  // namespace

ScriptWatch::ScriptWatch(const ScriptJob& job, ScriptProcess process, int host)
    : m_job(job), m_script(std::move(process)), m_host(host), m_childSignals(childSignals()) {
    enter(Phase::Runs, job.timeout);
}

ScriptResult ScriptWatch::run() {
    while (m_phase != Phase::Over) {
        wait();
        const Phase before = m_phase;
        advance();
        if (m_phase != before) advance();  // where nothing is left, nothing more would wake the wait
    }
    const bool allGone = killAll();
    readOutput(kLastReads);
    return result(allGone);
}

void ScriptWatch::enter(Phase phase, std::uint32_t length) {
    m_phase = phase;
    m_deadline = Clock::now() + milliseconds(length);
}

void ScriptWatch::wait() {
    // the host sends nothing more, so that anything from it means its end
    pollfd fds[] = {{m_hostGone ? -1 : m_host, POLLIN | POLLRDHUP, 0},
                    {m_outputOver ? -1 : m_script.output.get(), POLLIN, 0},
                    {m_childSignals.get(), POLLIN, 0}};
    const auto left = std::chrono::ceil<milliseconds>(m_deadline - Clock::now());
    ::poll(fds, 3, static_cast<int>(std::max<milliseconds::rep>(left.count(), 0)));
    if (fds[0].revents != 0) m_hostGone = true;
    if (fds[1].revents != 0) readOutput(1);
    // an orphan that has come to us and ended stays in the table until it is waited for
    if (takeSignals(m_childSignals.get())) reapOthers(m_script.process);
}

void ScriptWatch::readOutput(int reads) {
    char bytes[kChunk];
    while (reads-- > 0 && !m_outputOver) {
        const ssize_t count = ::read(m_script.output.get(), bytes, sizeof bytes);
        if (count > 0)
            m_output.append({bytes, static_cast<std::size_t>(count)});
        else if (count == 0)
            m_outputOver = true;
        else if (errno != EINTR)
            return;
    }
}

bool ScriptWatch::hasEnded() const {
    siginfo_t info{};
    // looks without taking it away: its number must not be given to another process before the last kill
    const int answer =
        ::waitid(P_PID, static_cast<id_t>(m_script.process), &info, WEXITED | WNOHANG | WNOWAIT);
    return answer != 0 || info.si_pid == m_script.process;
}

bool ScriptWatch::isAlone() const {
    return reapOthers(m_script.process).empty();
}

void ScriptWatch::advance() {
    const bool late = Clock::now() >= m_deadline;
    switch (m_phase) {
        case Phase::Runs:
            if (hasEnded())
                enter(Phase::Leftovers, m_job.leftoverGrace);
            else if (m_hostGone)
                end(ScriptResult::Interrupted);
            else if (late)
                end(ScriptResult::TimedOut);
            return;
        case Phase::Leftovers:
            if (late || m_hostGone || (m_outputOver && isAlone())) m_phase = Phase::Over;
            return;
        case Phase::Ending:
            if (late || (hasEnded() && isAlone())) m_phase = Phase::Over;
            return;
        case Phase::Over:
            return;
    }
}

void ScriptWatch::end(ScriptResult::Outcome because) {
    m_endedBecause = because;
    ::kill(-m_script.process, SIGTERM);
    for (const pid_t process : reapOthers(m_script.process))
        if (::getpgid(process) != m_script.process) ::kill(process, SIGTERM);
    enter(Phase::Ending, m_job.termGrace);
}

bool ScriptWatch::killAll() {
    const Clock::time_point deadline = Clock::now() + kKillTime;
    while (true) {
        ::kill(-m_script.process, SIGKILL);
        // Asked first: what the script has started comes to us as it ends.
        const bool ended = hasEnded();
        // what has gone to another session comes to us as its parents die, one generation a turn
        const std::vector<pid_t> others = reapOthers(m_script.process);
        for (const pid_t process : others)
            ::kill(process, SIGKILL);
        if (others.empty() && ended) return true;
        if (Clock::now() >= deadline) return false;
        pollfd signals{m_childSignals.get(), POLLIN, 0};
        ::poll(&signals, 1, static_cast<int>(kKillLook.count()));
        takeSignals(m_childSignals.get());
    }
}

ScriptResult ScriptWatch::result(bool allGone) {
    ScriptResult result;
    int status = 0;
    const bool known = ::waitpid(m_script.process, &status, WNOHANG) == m_script.process;
    if (m_endedBecause) {
        result.outcome = *m_endedBecause;
        if (result.outcome == ScriptResult::Interrupted) result.failure = "the host stopped while it ran";
    } else if (known && WIFSIGNALED(status)) {
        result.outcome = ScriptResult::Signalled;
        result.signal = WTERMSIG(status);
    } else if (!known) {
        result.outcome = ScriptResult::Interrupted;
        result.failure = "how it ended is not known";
    } else {
        result.exitCode = WEXITSTATUS(status);
        result.outcome = result.exitCode == 0 ? ScriptResult::Succeeded : ScriptResult::Failed;
    }
    if (!allGone) result.failure = "some of its processes could not be ended";
    result.lastLines = m_output.lastLines();
    result.outputBytes = m_output.bytes();
    result.truncated = m_output.truncated();
    return result;
}

}  // namespace vigil
