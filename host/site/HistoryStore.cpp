#include "host/site/HistoryStore.hpp"

#include <functional>
#include <utility>

namespace vigil {

HistoryStore::HistoryStore(std::unique_ptr<SQLite::Database> database)
    : m_database(std::move(database)),
      m_begin(*m_database, "BEGIN IMMEDIATE"),
      m_commit(*m_database, "COMMIT"),
      m_notification(*m_database,
                     "INSERT INTO notifications(station, started, layout, readings) VALUES(?, ?, ?, ?)"),
      m_layouts(*m_database),
      m_texts(*m_database),
      m_numberOf([this](std::string_view text) { return m_texts.numberOf(text); }) {}

void HistoryStore::put(const StoredNotification& notification) {
    auto& stored = m_layouts.of(notification.station, *notification.readings);
    m_row.clear();
    packRow(m_row, stored.layout, *notification.readings, notification.started, notification.sequence,
            m_numberOf);
    m_notification.bind(1, notification.station);
    m_notification.bind(2, notification.started.secondsSinceReference());
    m_notification.bind(3, stored.id);
    m_notification.bindNoCopy(4, m_row.data(), static_cast<int>(m_row.size()));
    m_notification.exec();
    m_notification.reset();
}

void HistoryStore::put(const StoredFire& fire) {
    SQLite::Statement insert(*m_database,
                             "INSERT INTO fires(plugIn, station, started, actionsBegan, actionsEnded) "
                             "VALUES(?, ?, ?, ?, ?)");
    insert.bind(1, fire.plugIn);
    insert.bind(2, fire.station);
    insert.bind(3, fire.started.secondsSinceReference());
    insert.bind(4, fire.actionsBegan.secondsSinceReference());
    insert.bind(5, fire.actionsEnded.secondsSinceReference());
    insert.exec();
}

void HistoryStore::put(const WatchBegan& watch) {
    SQLite::Statement insert(*m_database,
                             "INSERT INTO watches(plugIn, began, beganBy) SELECT ?1, ?2, ?3 WHERE NOT EXISTS "
                             "(SELECT 1 FROM watches WHERE plugIn = ?1 AND ended IS NULL)");
    insert.bind(1, watch.plugIn);
    insert.bind(2, watch.date.secondsSinceReference());
    insert.bind(3, watchReasonName(watch.reason));
    insert.exec();
}

void HistoryStore::put(const WatchEnded& watch) {
    SQLite::Statement end(*m_database,
                          "UPDATE watches SET ended = ?2, endedBy = ?3 WHERE plugIn = ?1 AND ended IS NULL");
    end.bind(1, watch.plugIn);
    end.bind(2, watch.date.secondsSinceReference());
    end.bind(3, watchReasonName(watch.reason));
    end.exec();
}

void HistoryStore::put(const ArchiveTaken& archive) {
    const PlugInRecord& plugIn = *archive.plugIn;
    SQLite::Statement known(*m_database,
                            "INSERT OR REPLACE INTO plugIns(id, station, title) VALUES(?, ?, ?)");
    known.bind(1, plugIn.id);
    known.bind(2, plugIn.station);
    known.bind(3, plugIn.title);
    known.exec();
    const std::size_t hash = std::hash<std::string>()(plugIn.archive);
    const auto last = m_archives.find(plugIn.id);
    if (last != m_archives.end() && archive.reason != ArchiveReason::Began) {
        if (last->second.hash == hash) return;
        const double since = archive.date.secondsSince(last->second.date);
        if (archive.reason == ArchiveReason::Saved && since >= 0 && since < kBetweenSaved) return;
    }
    SQLite::Statement insert(*m_database,
                             "INSERT INTO archives(plugIn, since, reason, archive) VALUES(?, ?, ?, ?)");
    insert.bind(1, plugIn.id);
    insert.bind(2, archive.date.secondsSinceReference());
    insert.bind(3, archiveReasonName(archive.reason));
    insert.bind(4, plugIn.archive);
    insert.exec();
    m_archives[plugIn.id] = {hash, archive.date};
}

void HistoryStore::put(const StationNamed& named) {
    SQLite::Statement insert(*m_database, "INSERT OR REPLACE INTO stations(id, name) VALUES(?, ?)");
    insert.bind(1, named.station);
    insert.bind(2, *named.name);
    insert.exec();
}

void HistoryStore::put(const StoredLoss& loss) {
    SQLite::Statement insert(*m_database,
                             "INSERT INTO losses(station, began, ended, count) VALUES(?, ?, ?, ?)");
    insert.bind(1, loss.station);
    insert.bind(2, loss.from.secondsSinceReference());
    insert.bind(3, loss.to.secondsSinceReference());
    insert.bind(4, static_cast<std::int64_t>(loss.count));
    insert.exec();
}

}  // namespace vigil
