#pragma once

#include <cstdint>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "host/site/SiteRecords.hpp"
#include "platform/Date.hpp"

namespace vigil {

/// Deletes what is older than the retention, a few rows at a time, so that nobody waits for it. Time is told
/// by what is written: a history that gains nothing loses nothing. The writer's thread; throws
/// SQLite::Exception.
class HistoryRetention {
  public:
    /// A step deletes so many notifications and as many more as were written since the last one.
    static constexpr std::uint64_t kRowsOfStep = 500;
    /// Seconds between two rounds over all stations.
    static constexpr double kBetweenRounds = 60;

    explicit HistoryRetention(int days) : m_seconds(days * 86400.0) {}

    /// Takes a step, inside a transaction of the caller's, where one is due. `now` is the newest time
    /// written, `written` counts notifications since the last call. Gives the number deleted.
    std::uint64_t step(SQLite::Database& database, Date now, std::uint64_t written);

  private:
    std::uint64_t deleteNotifications(SQLite::Database& database, RecordId station, std::uint64_t most) const;
    void deleteRest(SQLite::Database& database) const;

    double m_seconds;
    Date m_cut;
    Date m_nextRound = Date::distantPast();
    std::vector<RecordId> m_todo;  // stations that this round has still to see
};

}  // namespace vigil
