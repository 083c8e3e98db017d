#include "host/services/MainRunLoop.hpp"

#include <algorithm>
#include <utility>

namespace vigil {
namespace {

constexpr double kLongestWait = 86400.0;

}  // namespace

Mailbox::Deadline deadlineFor(Date date, Date now) {
    const double seconds = date.secondsSince(now);
    const double wait = seconds > 0 ? std::min(seconds, kLongestWait) : 0.0;
    return std::chrono::steady_clock::now() + std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                                                  std::chrono::duration<double>(wait));
}

MainRunLoop::MainRunLoop(Mailbox& mailbox, Clock clock) : m_mailbox(mailbox), m_clock(std::move(clock)) {}

void MainRunLoop::runUntil(Date date) {
    const auto deadline = deadlineFor(date, m_clock());
    if (m_turn)
        m_turn(deadline);
    else
        m_mailbox.serveOneNested(deadline);
}

SleepingRunLoop::SleepingRunLoop(MainRunLoop::Clock clock) : m_clock(std::move(clock)) {}

void SleepingRunLoop::runUntil(Date date) {
    std::this_thread::sleep_until(deadlineFor(date, m_clock()));
}

}  // namespace vigil
