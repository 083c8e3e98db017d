#include "host/site/HistoryLayouts.hpp"

#include <stdexcept>
#include <utility>
#include <vector>

#include <sqlite3.h>

namespace vigil {

HistoryLayout readHistoryLayout(SQLite::Database& database, std::int64_t id) {
    std::vector<std::string> keys;
    SQLite::Statement readKeys(database, "SELECT key FROM layoutKeys WHERE layout = ? ORDER BY slot");
    readKeys.bind(1, id);
    while (readKeys.executeStep())
        keys.push_back(readKeys.getColumn(0).getString());
    std::vector<HistoryLayout::Label> labels;
    SQLite::Statement readLabels(
        database, "SELECT key, name, unit, type, visible FROM layoutLabels WHERE layout = ? ORDER BY place");
    readLabels.bind(1, id);
    while (readLabels.executeStep())
        labels.push_back(std::make_shared<const AgentPropertyLabel>(AgentPropertyLabel{
            readLabels.getColumn(0).getString(), readLabels.getColumn(1).getString(),
            readLabels.getColumn(2).getString(), FourCharCode{readLabels.getColumn(3).getUInt()},
            readLabels.getColumn(4).getInt() != 0}));
    try {
        return {KeyTable::make(std::move(keys)), std::move(labels)};
    } catch (const std::out_of_range& what) {
        throw SQLite::Exception(std::string("layout ") + std::to_string(id) + ": " + what.what(),
                                SQLITE_CORRUPT);
    }
}

HistoryLayouts::HistoryLayouts(SQLite::Database& database) : m_database(database) {}

HistoryLayouts::Stored& HistoryLayouts::of(RecordId station, const Readings& batch) {
    auto found = m_stations.find(station);
    if (found == m_stations.end()) {
        auto last = newest(station);
        found = m_stations.emplace(station, last ? std::move(*last) : Stored()).first;
    }
    Stored& stored = found->second;
    if (stored.id != 0 && stored.layout.fits(batch)) return stored;
    HistoryLayout next = stored.layout.grown(batch);
    if (stored.id != 0) retire(station);
    stored.id = store(station, next);
    stored.layout = std::move(next);
    return stored;
}

std::optional<HistoryLayouts::Stored> HistoryLayouts::newest(RecordId station) {
    SQLite::Statement last(m_database, "SELECT max(id) FROM layouts WHERE station = ?");
    last.bind(1, station);
    last.executeStep();
    if (last.getColumn(0).isNull()) return std::nullopt;
    const std::int64_t id = last.getColumn(0).getInt64();
    return Stored{id, readHistoryLayout(m_database, id)};
}

// From here on no row refers to the station's last layout, so it may go when the rows so far have gone.
void HistoryLayouts::retire(RecordId station) {
    SQLite::Statement mark(m_database,
                           "UPDATE layouts SET lastUsed = (SELECT max(started) FROM notifications "
                           "WHERE station = ?1) WHERE station = ?1 AND lastUsed IS NULL");
    mark.bind(1, station);
    mark.exec();
}

std::int64_t HistoryLayouts::store(RecordId station, const HistoryLayout& layout) {
    SQLite::Statement known(m_database, "INSERT OR IGNORE INTO stations(id) VALUES(?)");
    known.bind(1, station);
    known.exec();
    SQLite::Statement insert(m_database, "INSERT INTO layouts(station) VALUES(?)");
    insert.bind(1, station);
    insert.exec();
    const std::int64_t id = m_database.getLastInsertRowid();
    SQLite::Statement key(m_database, "INSERT INTO layoutKeys VALUES(?, ?, ?)");
    for (std::size_t slot = 0; slot < layout.table()->size(); ++slot, key.reset()) {
        key.bind(1, id);
        key.bind(2, static_cast<std::int64_t>(slot));
        key.bind(3, layout.table()->key(static_cast<KeyTable::Slot>(slot)));
        key.exec();
    }
    SQLite::Statement row(m_database, "INSERT INTO layoutLabels VALUES(?, ?, ?, ?, ?, ?, ?)");
    for (std::size_t place = 0; place < layout.labels().size(); ++place, row.reset()) {
        const AgentPropertyLabel& label = *layout.labels()[place];
        row.bind(1, id);
        row.bind(2, static_cast<std::int64_t>(place));
        row.bind(3, label.propertyName);
        row.bind(4, label.name);
        row.bind(5, label.unit);
        row.bind(6, static_cast<std::int64_t>(static_cast<std::uint32_t>(label.type)));
        row.bind(7, label.visible ? 1 : 0);
        row.exec();
    }
    return id;
}

}  // namespace vigil
