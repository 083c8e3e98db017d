#include "host/services/automation/HelperCall.hpp"

#include <algorithm>
#include <stdexcept>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include "host/services/HelperProcess.hpp"

namespace vigil {

using Clock = std::chrono::steady_clock;

namespace {

/// How often one that was killed is looked at.
constexpr std::chrono::milliseconds kLook{10};

}  // namespace

StopSignal::StopSignal() : m_event(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!m_event) throw std::runtime_error("no event descriptor for the courier");
}

void StopSignal::raise() {
    m_raised = true;
    const std::uint64_t one = 1;
    // fails only when it is set already
    [[maybe_unused]] const ssize_t written = ::write(m_event.get(), &one, sizeof one);
}

Result<HelperAnswer> callHelper(const std::string& helper, const char* command, std::string job, char kind,
                                std::chrono::milliseconds time, const StopSignal& stop) {
    auto started = HelperProcess::start(helper, command, std::move(job));
    if (!started) return started.error();
    HelperProcess& process = started.value();
    HelperAnswer answer;
    auto deadline = Clock::now() + time + kHelperGrace;
    bool killed = false;
    const auto take = [&] {
        process.exchange();
        while (auto message = process.next()) {
            if (message->front() != kind) continue;
            answer.message = std::move(message);
            // it takes leave of others, who must not keep us waiting
            deadline = std::min(deadline, Clock::now() + kHelperGrace);
        }
    };
    while (!process.ending()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
        pollfd fds[] = {{answer.stopped ? -1 : stop.fd(), POLLIN, 0},
                        {process.socket(), process.socketEvents(), 0},
                        {killed ? -1 : process.process(), POLLIN, 0}};
        ::poll(fds, 3, static_cast<int>(std::clamp<long long>(left, 0, killed ? kLook.count() : 1 << 30)));
        take();
        // not even the system can end it
        if (killed && Clock::now() >= deadline) break;
        if (!answer.stopped && stop.raised()) {
            answer.stopped = true;
            process.closeInput();
            deadline = std::min(deadline, Clock::now() + kHelperGrace);
        }
        if (!killed && (process.broken() || Clock::now() >= deadline)) {
            process.kill();
            killed = true;
            deadline = Clock::now() + kDyingTime;
        }
    }
    take();
    if (!answer.message)
        answer.ending = killed ? "its helper did not answer in time and was ended"
                               : "its helper " + process.ending().value_or("ended");
    return answer;
}

}  // namespace vigil
