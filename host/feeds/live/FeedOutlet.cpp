#include "host/feeds/live/FeedOutlet.hpp"

#include <utility>

namespace vigil {

FeedOutlet::FeedOutlet(Options options) : m_options(std::move(options)) {}

void FeedOutlet::arrived(RawMessage message) {
    const std::lock_guard lock(m_mutex);
    if (m_options.sink) bring(std::move(message));
}

void FeedOutlet::bring(RawMessage message) {
    ++m_messages;
    m_bytes += message.payload.size();
    message.arrived = m_options.clock();
    m_options.sink->arrived(std::move(message));
}

bool FeedOutlet::arrivedLine(std::string_view line) {
    RawMessage message;
    message.payload = line;
    const std::lock_guard lock(m_mutex);
    if (!m_options.sink) return true;
    bring(std::move(message));
    return !m_options.sink->wantsPause();
}

void FeedOutlet::leftOut(LeftOut kind, const std::string& words) {
    const std::lock_guard lock(m_mutex);
    if (!m_options.sink) return;
    ++(kind == LeftOut::Unclaimed ? m_unclaimed : m_leftOut);
    Told& told = m_told[static_cast<std::size_t>(kind)];
    const auto now = Steady::now();
    if (told.at && now - *told.at < m_options.tellAgain) {
        ++told.since;
        return;
    }
    const std::string more = told.since == 0 ? "" : " (and " + std::to_string(told.since) + " more like it)";
    told = {now, 0, words};
    m_options.sink->problem(words + more);
}

void FeedOutlet::state(FeedState::Kind kind, std::string words) {
    const std::lock_guard lock(m_mutex);
    if (!m_options.sink || (m_last && m_last->kind == kind && m_last->words == words)) return;
    if (kind == FeedState::Ended) tellRest();
    m_last = FeedState{kind, std::move(words), m_options.clock()};
    m_options.sink->state(*m_last);
}

void FeedOutlet::tellRest() {
    for (Told& told : m_told) {
        if (told.since > 0)
            m_options.sink->problem(told.last + " (and " + std::to_string(told.since) + " more like it)");
        told.since = 0;
    }
}

bool FeedOutlet::wantsPause() const {
    const std::lock_guard lock(m_mutex);
    return m_options.sink && m_options.sink->wantsPause();
}

FeedCounts FeedOutlet::counts() const {
    return {m_messages, m_bytes, m_leftOut, m_unclaimed, m_restarts};
}

void FeedOutlet::close() {
    std::shared_ptr<FeedSink> last;  // dies without the mutex: what it owns is not known here
    const std::lock_guard lock(m_mutex);
    last.swap(m_options.sink);
}

std::string inWords(std::chrono::milliseconds time) {
    constexpr int kSecond = 1000;
    if (time.count() < kSecond) return std::to_string(time.count()) + " ms";
    return std::to_string((time.count() + kSecond / 2) / kSecond) + " s";
}

}  // namespace vigil
