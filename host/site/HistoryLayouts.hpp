#pragma once

#include <cstdint>
#include <optional>
#include <unordered_map>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "host/site/HistoryLayout.hpp"

namespace vigil {

/// A layout as it stands in the file. Damage is SQLite::Exception with SQLITE_CORRUPT.
HistoryLayout readHistoryLayout(SQLite::Database& database, std::int64_t id);

/// The layouts in use, the newest of each station; new ones are stored as they come to be. The writer's
/// thread.
class HistoryLayouts {
  public:
    struct Stored {
        std::int64_t id = 0;
        HistoryLayout layout;
    };

    explicit HistoryLayouts(SQLite::Database& database);

    /// One that the batch fits in. Valid until the next call.
    Stored& of(RecordId station, const Readings& batch);
    void forget(RecordId station) { m_stations.erase(station); }

  private:
    std::optional<Stored> newest(RecordId station);
    std::int64_t store(RecordId station, const HistoryLayout& layout);
    void retire(RecordId station);

    SQLite::Database& m_database;
    std::unordered_map<RecordId, Stored> m_stations;
};

}  // namespace vigil
