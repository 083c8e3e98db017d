#pragma once

#include <memory>
#include <string>
#include <unordered_map>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "host/site/HistoryEvents.hpp"
#include "host/site/HistoryLayouts.hpp"
#include "host/site/HistoryRow.hpp"
#include "host/site/HistoryTexts.hpp"

namespace vigil {

/// Puts events into an open history, between `begin` and `commit`. After a failure (SQLite::Exception) the
/// store is dropped and a new one made, since what it remembers may have been rolled back. The writer's
/// thread.
class HistoryStore {
  public:
    /// Dates of `Saved` archives of a plug-in lie so many seconds apart at least.
    static constexpr double kBetweenSaved = 3600;

    explicit HistoryStore(std::unique_ptr<SQLite::Database> database);

    SQLite::Database& database() { return *m_database; }
    void begin() { m_begin.exec(), m_begin.reset(); }
    void commit() { m_commit.exec(), m_commit.reset(); }

    void put(const StoredNotification& notification);
    void put(const StoredFire& fire);
    void put(const WatchBegan& watch);
    void put(const WatchEnded& watch);
    void put(const ArchiveTaken& archive);
    void put(const StationNamed& named);
    void put(const StationForgotten& forgotten);
    void put(const StoredLoss& loss);

    /// Whether the last writer closed the file; from now on it counts as open.
    bool wasClosed();
    /// Ends the watches that a writer left behind: at the last notification of their stations.
    void endAbandonedWatches();
    void close();

  private:
    struct LastArchive {
        std::size_t hash = 0;
        Date date;
    };
    void setClosed(bool closed);

    const std::unique_ptr<SQLite::Database> m_database;
    SQLite::Statement m_begin;
    SQLite::Statement m_commit;
    SQLite::Statement m_notification;
    HistoryLayouts m_layouts;
    HistoryTexts m_texts;
    TextNumber m_numberOf;
    std::string m_row;
    std::unordered_map<RecordId, LastArchive> m_archives;
};

}  // namespace vigil
