#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <vector>

#include "host/site/HistoryCounts.hpp"
#include "host/site/HistoryEvents.hpp"

namespace vigil {

/// Events on their way to the writer's thread. Any thread, except where a member says so.
class HistoryQueue {
  public:
    /// The writer is woken before its time when so many wait.
    static constexpr std::size_t kMany = 512;
    /// The writer takes at most so many at once, so that a long queue is no long transaction.
    static constexpr std::size_t kMostTaken = 2048;

    HistoryQueue(std::size_t mostNotifications, std::chrono::milliseconds flushEvery)
        : m_most(mostNotifications), m_flushEvery(flushEvery) {}

    /// A notification that finds the queue full is refused and counted as lost: what is kept is then whole up
    /// to a moment, and the hole behind it has a beginning.
    void push(StoredNotification notification);
    /// Counts one that cannot be kept at all.
    void refuse();
    /// All events that are no notifications take at most so many bytes.
    static constexpr std::size_t kMostEventBytes = std::size_t{32} << 20;

    /// Anything else is taken, since losing it would falsify what is kept, as long as it fits: where it does
    /// not, of each plug-in only the newest archive stays, and what does not fit then is dropped and counted.
    void push(HistoryEvent event);

    /// Waits until something is due and moves it into `taken`, with what was lost meanwhile behind it. False
    /// when the queue is closed and empty. The writer's thread.
    bool take(std::vector<HistoryEvent>& taken);
    /// Tells that what was taken is dealt with: `written` notifications are committed. What failed is handed
    /// out again by the next `take` as losses. The writer's thread.
    void done(std::uint64_t written, const std::vector<StoredLoss>& failed, std::uint64_t deleted);

    void countFailed(std::uint64_t notifications);

    /// Returns when everything pushed before has been dealt with.
    void flush();
    void close();

    /// Why nothing can be written, as a sentence without its point; empty: all is well.
    void setFailing(const std::string& why);
    /// Events that the writer itself could not keep any longer.
    void countDropped(std::uint64_t events);

    HistoryCounts counts() const;

  private:
    bool makeRoom(std::size_t bytes);
    void addLoss(const StoredLoss& loss);

    const std::size_t m_most;
    const std::chrono::milliseconds m_flushEvery;
    mutable std::mutex m_mutex;
    std::condition_variable m_wake;     // the writer
    std::condition_variable m_settled;  // those that flush
    std::deque<HistoryEvent> m_events;
    std::size_t m_eventBytes = 0;
    std::map<RecordId, StoredLoss> m_losses;
    HistoryCounts m_counts;
    std::uint64_t m_pushed = 0;
    std::uint64_t m_taken = 0;
    std::uint64_t m_dealtWith = 0;
    std::uint64_t m_wanted = 0;  // somebody waits until so many are dealt with
    bool m_closed = false;
};

}  // namespace vigil
