#include "host/site/HistoryQueue.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

namespace vigil {

void HistoryQueue::push(StoredNotification notification) {
    bool wake = false;
    {
        const std::lock_guard lock(m_mutex);
        ++m_counts.appended;
        if (m_counts.queued >= m_most || m_closed) {
            ++m_counts.refused;
            addLoss({notification.station, notification.started, notification.started, 1});
            return;
        }
        ++m_counts.queued;
        ++m_pushed;
        m_events.emplace_back(std::move(notification));
        wake = m_events.size() == 1 || m_events.size() == kMany;
    }
    if (wake) m_wake.notify_one();
}

void HistoryQueue::refuse() {
    const std::lock_guard lock(m_mutex);
    ++m_counts.appended;
    ++m_counts.refused;
}

void HistoryQueue::push(HistoryEvent event) {
    bool wake = false;
    {
        const std::lock_guard lock(m_mutex);
        const std::size_t bytes = sizeOf(event);
        if (!makeRoom(bytes)) {
            ++m_counts.dropped;
            return;
        }
        m_eventBytes += bytes;
        ++m_pushed;
        m_events.push_back(std::move(event));
        wake = m_events.size() == 1 || m_events.size() == kMany;
    }
    if (wake) m_wake.notify_one();
}

bool HistoryQueue::makeRoom(std::size_t bytes) {
    if (m_eventBytes + bytes <= kMostEventBytes) return true;
    std::vector<HistoryEvent> events(std::make_move_iterator(m_events.begin()),
                                     std::make_move_iterator(m_events.end()));
    keepNewestArchives(events);
    // What went needs no dealing with.
    m_taken += m_events.size() - events.size();
    m_events.assign(std::make_move_iterator(events.begin()), std::make_move_iterator(events.end()));
    m_eventBytes = 0;
    for (const HistoryEvent& event : m_events)
        if (!std::holds_alternative<StoredNotification>(event)) m_eventBytes += sizeOf(event);
    return m_eventBytes + bytes <= kMostEventBytes;
}

void HistoryQueue::addLoss(const StoredLoss& loss) {
    const auto [place, fresh] = m_losses.try_emplace(loss.station, loss);
    if (fresh) return;
    place->second.from = std::min(place->second.from, loss.from);
    place->second.to = std::max(place->second.to, loss.to);
    place->second.count += loss.count;
}

bool HistoryQueue::take(std::vector<HistoryEvent>& taken) {
    std::unique_lock lock(m_mutex);
    m_wake.wait(lock, [this] { return m_closed || !m_events.empty(); });
    m_wake.wait_for(lock, m_flushEvery,
                    [this] { return m_closed || m_events.size() >= kMany || m_wanted > m_dealtWith; });
    if (m_events.empty() && m_losses.empty()) return !m_closed;
    const std::size_t count = std::min(m_events.size(), kMostTaken);
    for (std::size_t i = 0; i < count; ++i) {
        if (std::holds_alternative<StoredNotification>(m_events.front()))
            --m_counts.queued;
        else
            m_eventBytes -= sizeOf(m_events.front());
        taken.push_back(std::move(m_events.front()));
        m_events.pop_front();
    }
    m_taken += count;
    for (const auto& [station, loss] : m_losses)
        taken.emplace_back(loss);
    m_losses.clear();
    return true;
}

void HistoryQueue::done(std::uint64_t written, const std::vector<StoredLoss>& failed, std::uint64_t deleted) {
    {
        const std::lock_guard lock(m_mutex);
        m_dealtWith = m_taken;
        m_counts.written += written;
        m_counts.deleted += deleted;
        // A closed queue is not asked again for what nobody can write.
        for (const StoredLoss& loss : failed)
            if (!m_closed) addLoss(loss);
    }
    m_settled.notify_all();
}

void HistoryQueue::countFailed(std::uint64_t notifications) {
    const std::lock_guard lock(m_mutex);
    m_counts.failed += notifications;
}

void HistoryQueue::countDropped(std::uint64_t events) {
    const std::lock_guard lock(m_mutex);
    m_counts.dropped += events;
}

void HistoryQueue::setFailing(const std::string& why) {
    const std::lock_guard lock(m_mutex);
    m_counts.failing = why;
}

void HistoryQueue::flush() {
    std::unique_lock lock(m_mutex);
    const std::uint64_t until = m_pushed;
    m_wanted = std::max(m_wanted, until);
    m_wake.notify_one();
    m_settled.wait(lock, [this, until] { return m_dealtWith >= until; });
}

void HistoryQueue::close() {
    {
        const std::lock_guard lock(m_mutex);
        m_closed = true;
    }
    m_wake.notify_one();
}

HistoryCounts HistoryQueue::counts() const {
    const std::lock_guard lock(m_mutex);
    return m_counts;
}

}  // namespace vigil
