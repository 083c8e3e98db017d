#include <algorithm>
#include <utility>

#include "host/kit/StandardLog.hpp"
#include "host/run/RunningSite.hpp"

// What a running site does about once a second: it writes down what has changed, and sees what goes wrong in
// silence.

namespace vigil {
namespace {

/// Without a fire an archive is written at most so often.
constexpr std::chrono::seconds kSaveEvery{60};
/// What the ledger has kept for long enough goes in shares.
constexpr std::chrono::minutes kForgetEvery{10};
/// Stations with rolling readings look at their ages so often.
constexpr std::chrono::seconds kRemindEvery{30};

}  // namespace

void RunningSite::tick() {
    completeUnposted();
    const auto now = Clock::now();
    if (now - m_reminded >= kRemindEvery) {
        m_reminded = now;
        for (const auto& [id, station] : m_stations)
            if (!station->record().rolling.empty()) station->remind();
    }
    if (now - m_forgot >= kForgetEvery) {
        m_forgot = now;
        m_writer.forget(m_world.now().plus(-SiteFile::kKeptSeconds));
    }
    // A share of them each time, so that the main thread is never away for long.
    std::size_t share = m_entries.size() / 60 + 1;
    for (Entry& entry : m_entries) {
        noteFailed(entry);
        if (share == 0 || !entry.hosted || now - entry.saved < kSaveEvery) continue;
        if (!entry.notes->takeChanged()) continue;
        save(entry);
        --share;
    }
    tellChanges(problems());
}

void RunningSite::completeUnposted() {
    std::vector<std::function<void()>> waiting;
    {
        const std::lock_guard lock(m_unpostedMutex);
        waiting.swap(m_unposted);
    }
    for (const auto& complete : waiting)
        complete();
}

// One that threw was stopped where that happened.
void RunningSite::noteFailed(Entry& entry) {
    if (!entry.hosted || !entry.watching || !entry.hosted->failure()) return;
    entry.watching = false;
    if (m_history) m_history->stopped(entry.record.id, m_world.now(), WatchReason::Failed);
}

void RunningSite::tellChanges(const std::map<std::string, std::string>& now) {
    for (const auto& [of, words] : now)
        if (!m_told.contains(of)) m_log.logLevel(kLogProblem, words);
    for (const auto& [of, words] : m_told)
        if (!now.contains(of)) m_log.logLevel(kLogNotice, "no longer: " + words);
    m_told = now;
}

}  // namespace vigil
