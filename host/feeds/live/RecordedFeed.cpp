#include "host/feeds/live/RecordedFeed.hpp"

#include <algorithm>
#include <utility>

#include "host/feeds/live/ShiftedReadings.hpp"

namespace vigil {

using Steady = std::chrono::steady_clock;

RecordedFeed::RecordedFeed(FeedLoop& loop, std::shared_ptr<FeedOutlet> outlet, Options options,
                           FeedTiming timing)
    : m_loop(loop),
      m_outlet(std::move(outlet)),
      m_options(std::move(options)),
      m_timing(timing),
      m_backOff(timing.retryFirst, timing.programRetryMost, timing.settled) {
    m_outlet->state(FeedState::Starting);
    m_loop.add(*this);
}

RecordedFeed::~RecordedFeed() {
    m_loop.remove(*this);
}

FeedLoop::Time RecordedFeed::serve() {
    const Time now = Steady::now();
    if (m_over) return FeedLoop::kNever;
    if (!m_source)
        if (const auto later = open(now)) return *later;
    for (int i = 0; i < kNotificationsATurn; ++i) {
        if (m_outlet->wantsPause()) return now + m_timing.pause;
        if (!m_next && !takeNext()) return FeedLoop::kNever;
        if (const Time due = dueTime(); due > now) return due;
        bring();
    }
    return now;
}

std::optional<FeedLoop::Time> RecordedFeed::open(Time now) {
    auto opened = m_options.open([this](const FeedProblem& problem) {
        m_outlet->leftOut(FeedOutlet::LeftOut::Unusable,
                          "line " + std::to_string(problem.line) + ": " + problem.message);
    });
    if (opened) {
        m_source = std::move(opened).value();
        m_outlet->state(FeedState::Live);
        return std::nullopt;
    }
    if (opened.error().kind == OpenError::Kind::BadInput) {
        m_over = true;
        m_outlet->state(FeedState::Failed, opened.error().message);
        return FeedLoop::kNever;
    }
    const auto pause = m_backOff.failedAfter(FeedTiming::Milliseconds(0));
    m_outlet->state(FeedState::Retrying, opened.error().message + "; tried again in " + inWords(pause));
    return now + pause;
}

bool RecordedFeed::takeNext() {
    auto next = m_source->next();
    if (next && next.value()) {
        m_next = std::move(next).value();
        return true;
    }
    m_over = true;
    if (next)
        m_outlet->state(FeedState::Ended, std::to_string(m_brought) + " notifications, no more");
    else
        m_outlet->state(FeedState::Failed, next.error().message);
    m_source.reset();
    return false;
}

// Of a file of several stations the times may go back; then it is due at once.
FeedLoop::Time RecordedFeed::dueTime() const {
    if (m_options.speed <= 0 || !m_firstTime) return {};
    constexpr double kLongest = 1e8;  // seconds; some years, and no overflow
    const double after = m_next->time.secondsSince(*m_firstTime) / m_options.speed;
    const std::chrono::duration<double> kept(std::clamp(after, 0.0, kLongest));
    return m_began + std::chrono::duration_cast<Steady::duration>(kept);
}

void RecordedFeed::bring() {
    if (!m_firstTime) {
        m_firstTime = m_next->time;
        m_began = Steady::now();
    }
    RawMessage message;
    message.route = std::move(m_next->station);
    message.recorded = m_next->time;
    message.ready = std::move(m_next->readings);
    if (m_options.shifts) message.ready = shifted(*message.ready, m_outlet->now().secondsSince(m_next->time));
    m_next.reset();
    ++m_brought;
    m_outlet->arrived(std::move(message));
}

}  // namespace vigil
