#include <thread>

#include "host/run/RunningSite.hpp"

namespace vigil {

void RunningSite::beginStop() {
    m_world.mailbox().refuseHandOvers();
    m_world.stopEffects();
    // Nested loops have taken whatever was to wake the outermost one.
    m_world.mailbox().dispatchAtRest([this] { m_world.mailbox().wake(); });
}

void RunningSite::stop() {
    if (m_stopped) return;
    m_stopped = true;
    m_world.stopEffects();
    for (const auto& [id, station] : m_stations)
        station->close();
    // Scripts are ended while the feeds end: neither waits for the other.
    std::thread scripts([this] { m_scripts.stop(std::chrono::milliseconds(500)); });
    m_feeds.stop();
    scripts.join();
    // A cycle whose fire has not begun is given up; one whose fire has ended still writes that down below.
    m_world.mailbox().refuseHandOvers();
    m_pool.stop();
    while (m_world.mailbox().serveOne({})) {
    }
    completeUnposted();
    for (Entry& entry : m_entries) {
        if (!entry.hosted) continue;
        noteFailed(entry);
        if (entry.hosted->isStarted()) entry.hosted->stop();
        if (m_history && entry.watching) m_history->stopped(entry.record.id, m_world.now(), WatchReason::Run);
    }
    m_world.stopPlayer();
    m_world.automationScripts().stop();
    for (Entry& entry : m_entries)
        if (entry.hosted && entry.notes->takeChanged()) save(entry);
    m_writer.stop();
    m_history.reset();
}

}  // namespace vigil
