#include "host/site/HistoryWriter_Thread.hpp"

#include <algorithm>
#include <utility>

#include "host/site/HistoryFile.hpp"

namespace vigil {
namespace {

/// Of fires, watches and archives that the file refused so many wait for it to take them again.
constexpr std::size_t kMostKept = 10000;

}  // namespace

HistoryWriter::Thread::Thread(HistoryLock lock, std::string path, std::string identity,
                              HistoryOptions options)
    : queue(options.mostQueued, options.flushEvery),
      file(std::move(path)),
      m_lock(std::move(lock)),
      m_identity(std::move(identity)),
      m_options(std::move(options)),
      m_retention(m_options.retentionDays) {}

HistoryWriter::Thread::~Thread() {
    queue.close();
    if (m_thread.joinable()) m_thread.join();
}

void HistoryWriter::Thread::begin() {
    m_thread = std::thread([this] { run(); });
}

void HistoryWriter::Thread::run() {
    std::vector<HistoryEvent> taken;
    while (queue.take(taken)) {
        lookAtCheck();
        if (!taken.empty()) write(taken);
        taken.clear();
    }
    try {
        // A file that is still being checked counts as not closed, so that the next writer checks it again.
        if (m_store && (!m_check || m_check->isOver())) m_store->close();
    } catch (const SQLite::Exception& what) {
        tell("The history " + file + " could not be closed: " + what.what() + ".");
    }
}

void HistoryWriter::Thread::write(const std::vector<HistoryEvent>& taken) {
    for (bool again = true;; again = false) {
        try {
            if (!m_store) openStore();
            const std::uint64_t written = insert(taken);
            m_kept.clear();
            for (const HistoryEvent& event : taken)
                m_context.note(event);
            if (std::exchange(m_failing, false)) {
                queue.setFailing("");
                tell("The history " + file + " is being written again.");
            }
            return queue.done(written, {}, std::exchange(m_deleted, 0));
        } catch (const SQLite::Exception& what) {
            m_store.reset();  // rolls back
            const auto obstacle = obstacleIn(what);
            if (again && obstacle && beginAnew(*obstacle, what.what())) continue;
            return giveUp(taken, what.what());
        }
    }
}

std::uint64_t HistoryWriter::Thread::insert(const std::vector<HistoryEvent>& events) {
    std::uint64_t written = 0;
    const auto put = [this](const HistoryEvent& event) {
        std::visit([this](const auto& what) { m_store->put(what); }, event);
    };
    m_store->begin();
    for (const HistoryEvent& event : m_kept)
        put(event);
    for (const HistoryEvent& event : events) {
        put(event);
        const auto* notification = std::get_if<StoredNotification>(&event);
        if (!notification) continue;
        ++written;
        m_newest = std::max(m_newest, notification->started);
    }
    if (written > 0) m_deleted = m_retention.step(m_store->database(), m_newest, written);
    m_store->commit();
    return written;
}

void HistoryWriter::Thread::giveUp(const std::vector<HistoryEvent>& taken, const std::string& why) {
    queue.setFailing("the history " + file + " cannot be written: " + why);
    if (!std::exchange(m_failing, true)) tell("The history " + file + " cannot be written: " + why + ".");
    std::vector<StoredLoss> lost;
    std::uint64_t count = 0;
    for (const HistoryEvent& event : taken) {
        if (const auto* loss = std::get_if<StoredLoss>(&event)) lost.push_back(*loss);
        const auto* notification = std::get_if<StoredNotification>(&event);
        if (!notification && !std::holds_alternative<StoredLoss>(event)) m_kept.push_back(event);
        if (!notification) continue;
        lost.push_back({notification->station, notification->started, notification->started, 1});
        ++count;
    }
    keepNewestArchives(m_kept);
    boundKept();
    queue.countFailed(count);
    queue.done(0, lost, 0);
}

// The newest go: what is kept is then whole up to a moment.
void HistoryWriter::Thread::boundKept() {
    std::size_t bytes = 0, fit = 0;
    while (fit < m_kept.size() && fit < kMostKept && bytes <= HistoryQueue::kMostEventBytes)
        bytes += sizeOf(m_kept[fit++]);
    if (bytes > HistoryQueue::kMostEventBytes) --fit;
    queue.countDropped(m_kept.size() - fit);
    m_kept.erase(m_kept.begin() + static_cast<std::ptrdiff_t>(fit), m_kept.end());
}

void HistoryWriter::Thread::tell(const std::string& sentence) const {
    if (m_options.tell) m_options.tell(sentence);
}

}  // namespace vigil
