#include "host/site/HistoryRetention.hpp"

#include <SQLiteCpp/Statement.h>

namespace vigil {

std::uint64_t HistoryRetention::step(SQLite::Database& database, Date now, std::uint64_t written) {
    if (m_todo.empty()) {
        if (now < m_nextRound) return 0;
        m_nextRound = now.plus(kBetweenRounds);
        m_cut = now.plus(-m_seconds);
        SQLite::Statement stations(database, "SELECT id FROM stations");
        while (stations.executeStep())
            m_todo.push_back(stations.getColumn(0).getInt64());
        deleteRest(database);
    }
    std::uint64_t left = kRowsOfStep + written;
    const std::uint64_t most = left;
    while (!m_todo.empty() && left > 0) {
        const std::uint64_t deleted = deleteNotifications(database, m_todo.back(), left);
        left -= deleted;
        if (left > 0) m_todo.pop_back();
    }
    return most - left;
}

std::uint64_t HistoryRetention::deleteNotifications(SQLite::Database& database, RecordId station,
                                                    std::uint64_t most) const {
    SQLite::Statement remove(database,
                             "DELETE FROM notifications WHERE id IN (SELECT id FROM notifications "
                             "WHERE station = ? AND started < ? ORDER BY started LIMIT ?)");
    remove.bind(1, station);
    remove.bind(2, m_cut.secondsSinceReference());
    remove.bind(3, static_cast<std::int64_t>(most));
    const auto deleted = static_cast<std::uint64_t>(remove.exec());
    if (deleted == most) return deleted;
    // No row is older than the cut any more, so none refers to a layout that was last used before it.
    for (const char* what : {"DELETE FROM layoutKeys WHERE layout IN (SELECT id FROM layouts WHERE station = "
                             "? AND lastUsed < ?)",
                             "DELETE FROM layoutLabels WHERE layout IN "
                             "(SELECT id FROM layouts WHERE station = ? AND lastUsed < ?)",
                             "DELETE FROM layouts WHERE station = ? AND lastUsed < ?"}) {
        SQLite::Statement old(database, what);
        old.bind(1, station);
        old.bind(2, m_cut.secondsSinceReference());
        old.exec();
    }
    return deleted;
}

// Few rows, so at once. Of archives the last one before the cut stays: it tells what judged from the cut on.
void HistoryRetention::deleteRest(SQLite::Database& database) const {
    for (const char* what :
         {"DELETE FROM fires WHERE actionsEnded < ?", "DELETE FROM watches WHERE ended < ?",
          "DELETE FROM losses WHERE ended < ?",
          "DELETE FROM archives WHERE since < ?1 AND EXISTS (SELECT 1 FROM archives AS later WHERE "
          "later.plugIn = archives.plugIn AND later.since > archives.since AND later.since <= ?1)"}) {
        SQLite::Statement old(database, what);
        old.bind(1, m_cut.secondsSinceReference());
        old.exec();
    }
}

}  // namespace vigil
