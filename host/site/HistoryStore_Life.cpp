#include "host/site/HistoryStore.hpp"

// What a history knows of its own life.

namespace vigil {

bool HistoryStore::wasClosed() {
    const bool closed = m_database->execAndGet("SELECT value FROM facts WHERE name = 'closed'").getInt() != 0;
    if (closed) setClosed(false);
    return closed;
}

void HistoryStore::setClosed(bool closed) {
    m_database->exec(std::string("UPDATE facts SET value = ") + (closed ? "1" : "0") +
                     " WHERE name = 'closed'");
}

void HistoryStore::close() {
    setClosed(true);
}

void HistoryStore::endAbandonedWatches() {
    m_database->exec(
        "UPDATE watches SET endedBy = 'unknown', ended = max(began, coalesce("
        "(SELECT max(started) FROM notifications WHERE station ="
        " (SELECT station FROM plugIns WHERE id = watches.plugIn)), began)) WHERE ended IS NULL");
}

void HistoryStore::put(const StationForgotten& forgotten) {
    for (const char* what :
         {"DELETE FROM fires WHERE plugIn IN (SELECT id FROM plugIns WHERE station = ?)",
          "DELETE FROM watches WHERE plugIn IN (SELECT id FROM plugIns WHERE station = ?)",
          "DELETE FROM archives WHERE plugIn IN (SELECT id FROM plugIns WHERE station = ?)",
          "DELETE FROM plugIns WHERE station = ?", "DELETE FROM losses WHERE station = ?",
          "DELETE FROM notifications WHERE station = ?",
          "DELETE FROM layoutKeys WHERE layout IN (SELECT id FROM layouts WHERE station = ?)",
          "DELETE FROM layoutLabels WHERE layout IN (SELECT id FROM layouts WHERE station = ?)",
          "DELETE FROM layouts WHERE station = ?", "DELETE FROM stations WHERE id = ?"}) {
        SQLite::Statement remove(*m_database, what);
        remove.bind(1, forgotten.station);
        remove.exec();
    }
    m_layouts.forget(forgotten.station);
}

}  // namespace vigil
