#include "host/feeds/live/ExecFeed.hpp"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <signal.h>
#include <sys/epoll.h>

#include "host/readings/KeyNames.hpp"

namespace vigil {

using Steady = std::chrono::steady_clock;

ExecFeed::ExecFeed(FeedLoop& loop, std::shared_ptr<FeedOutlet> outlet, ChildProcess::Plan plan,
                   FeedTiming timing)
    : m_loop(loop),
      m_outlet(std::move(outlet)),
      m_plan(std::move(plan)),
      m_timing(timing),
      m_backOff(timing.retryFirst, timing.programRetryMost, timing.settled) {
    m_outlet->state(FeedState::Starting);
    m_loop.add(*this);
}

ExecFeed::~ExecFeed() {
    askToEnd();
    {
        // a program that the system itself holds fast does not end; it is left to it
        std::unique_lock lock(m_mutex);
        m_changed.wait_until(lock, m_endBy, [this] { return m_over; });
    }
    m_loop.remove(*this);
}

void ExecFeed::askToEnd() {
    {
        const std::lock_guard lock(m_mutex);
        if (m_asked) return;
        m_asked = true;
        m_endBy = Steady::now() + m_timing.termGrace + std::chrono::milliseconds(200);
    }
    m_loop.wake(*this);
}

FeedLoop::Time ExecFeed::serve() {
    const Time now = Steady::now();
    bool asked = false;
    {
        const std::lock_guard lock(m_mutex);
        if (m_over) return FeedLoop::kNever;
        asked = m_asked;
    }
    if (asked) return end(now);
    if (m_child) return goOn(now);
    return now < m_next ? m_next : begin(now);
}

FeedLoop::Time ExecFeed::begin(Time now) {
    if (std::exchange(m_startedBefore, true)) m_outlet->restarted();
    m_started = now;
    m_live = m_paused = false;
    m_lastError.clear();
    m_lines.clear();
    m_errorLines.clear();
    auto started = ChildProcess::start(m_plan);
    if (!started) return tryLater(started.error().message, now);
    m_child.emplace(std::move(started).value());
    m_loop.watch(m_child->output(), EPOLLIN, *this);
    m_loop.watch(m_child->errors(), EPOLLIN, *this);
    m_loop.watch(m_child->process(), EPOLLIN | EPOLLONESHOT, *this);  // it is asked each time
    return now + m_timing.seemsFine;
}

// Reads what there is; a program that has ended has said all that it will.
FeedLoop::Time ExecFeed::goOn(Time now) {
    const auto ending = m_child->ending();
    readErrors();
    const bool pauses = m_outlet->wantsPause();
    const bool all = !pauses && readOutput();
    if (pauses != m_paused) {
        m_paused = pauses;
        if (pauses)
            m_loop.unwatch(m_child->output());
        else
            m_loop.watch(m_child->output(), EPOLLIN, *this);
    }
    if (ending && all) return hasEnded(*ending, now);
    if (pauses) return now + m_timing.pause;
    if (!all) return now;
    if (m_live) return FeedLoop::kNever;
    if (now - m_started >= m_timing.seemsFine) isLive();
    return m_live ? FeedLoop::kNever : m_started + m_timing.seemsFine;
}

FeedLoop::Time ExecFeed::hasEnded(const std::string& how, Time now) {
    m_lines.finish();
    readErrors();
    m_errorLines.finish();
    std::string why = "\"" + m_plan.words.front() + "\" " + how;
    if (!m_lastError.empty()) why += " (" + m_lastError + ")";
    m_loop.unwatch(m_child->output());
    m_loop.unwatch(m_child->errors());
    m_loop.unwatch(m_child->process());
    m_child.reset();
    return tryLater(why, now);
}

FeedLoop::Time ExecFeed::tryLater(const std::string& why, Time now) {
    const auto pause = m_backOff.failedAfter(now - m_started);
    // Without the pause: the same words are told once, not again at each try.
    m_outlet->state(FeedState::Retrying, why + "; started again, later each time");
    m_next = now + pause;
    return m_next;
}

// Gives whether there is nothing more for now.
bool ExecFeed::readOutput() {
    if (!m_lines.goOn()) return false;
    char bytes[16384];
    for (int i = 0; i < kChunksATurn; ++i) {
        const ssize_t count = ::read(m_child->output(), bytes, sizeof bytes);
        if (count < 0 && errno == EINTR) continue;
        if (count == 0) m_loop.unwatch(m_child->output());  // it has closed it, and may go on running
        if (count <= 0) return true;
        if (!m_lines.take({bytes, static_cast<std::size_t>(count)})) return false;
    }
    return false;
}

void ExecFeed::readErrors() {
    char bytes[4096];
    for (int i = 0; i < kChunksATurn; ++i) {
        const ssize_t count = ::read(m_child->errors(), bytes, sizeof bytes);
        if (count < 0 && errno == EINTR) continue;
        if (count == 0) m_loop.unwatch(m_child->errors());
        if (count <= 0) return;
        m_errorLines.take({bytes, static_cast<std::size_t>(count)});
    }
}

bool ExecFeed::keepError(std::string_view line) {
    if (line.find_first_not_of(" \t\r") == std::string_view::npos) return true;
    std::size_t length = std::min(line.size(), kErrorBytes);
    while (length < line.size() && length > 0 && (static_cast<unsigned char>(line[length]) & 0xC0U) == 0x80U)
        --length;  // between two characters
    m_lastError = repairedUtf8(line.substr(0, length));
    return true;
}

bool ExecFeed::bring(std::string_view line) {
    isLive();
    return m_outlet->arrivedLine(line);
}

void ExecFeed::tellTooLong() {
    m_outlet->leftOut(FeedOutlet::LeftOut::TooLong, "\"" + m_plan.words.front() +
                                                        "\" wrote a line of more than " +
                                                        std::to_string(kLongestRow) + " bytes; left out");
}

void ExecFeed::isLive() {
    if (std::exchange(m_live, true)) return;
    m_outlet->state(FeedState::Live);
}

// TERM, and KILL to what does not heed it. What it still says nobody wants.
FeedLoop::Time ExecFeed::end(Time now) {
    if (m_child && !std::exchange(m_told, true)) {
        m_loop.unwatch(m_child->output());
        m_loop.unwatch(m_child->errors());
        m_child->signal(SIGTERM);
        m_killAt = now + m_timing.termGrace;
    }
    if (m_child && !m_child->ending() && now < m_killAt) return m_killAt;
    if (m_child) m_loop.unwatch(m_child->process());
    m_child.reset();
    const std::lock_guard lock(m_mutex);
    m_over = true;
    m_changed.notify_all();
    return FeedLoop::kNever;
}

}  // namespace vigil
