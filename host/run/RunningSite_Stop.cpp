#include "host/run/RunningSite.hpp"

namespace vigil {

void RunningSite::stop() {
    if (m_stopped) return;
    m_stopped = true;
    for (const auto& [id, station] : m_stations)
        station->close();
    m_feeds.stop();
    // A cycle whose fire has not begun is given up; one whose fire has ended still writes that down below.
    m_world.mailbox().refuseHandOvers();
    m_pool.stop();
    while (m_world.mailbox().serveOne({})) {
    }
    for (Entry& entry : m_entries) {
        if (!entry.hosted || !entry.hosted->isStarted()) continue;
        const bool watched = entry.hosted->evaluating().value_or(true);
        entry.hosted->stop();
        if (m_history && watched) m_history->stopped(entry.record.id, m_world.now(), WatchReason::Run);
    }
    m_scripts.stop(std::chrono::milliseconds(500));
    for (Entry& entry : m_entries)
        if (entry.hosted && entry.notes->takeChanged()) save(entry);
    m_writer.stop();
    m_history.reset();
}

}  // namespace vigil
