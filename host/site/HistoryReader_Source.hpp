#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "host/site/HistoryLayout.hpp"
#include "host/site/HistoryReader.hpp"
#include "host/site/HistoryRow.hpp"

namespace vigil {

/// Rows of one station, unpacked one after another, over a connection of its own that holds the file as it is
/// now. Throws SQLite::Exception where the file cannot be opened. One thread at a time.
class StoredSource final : public HistorySource {
  public:
    /// All rows of the range, in the order in which they came; of their readings those of the keys alone,
    /// where there are some given.
    StoredSource(std::string path, RecordId station, const HistoryRange& range,
                 std::optional<std::vector<std::string>> keys = {});
    /// Only the last one at `at` or before.
    StoredSource(std::string path, RecordId station, std::optional<Date> at);

    Result<std::optional<StoredNotification>> next() override;

  private:
    Result<std::optional<StoredNotification>> unpack();
    /// A layout with what is wanted of its rows.
    struct Known {
        HistoryLayout layout{};
        std::optional<RowChoice> choice{};
    };
    const Known& layout(std::int64_t id);
    std::optional<std::string> text(std::uint64_t number);

    const std::string m_path;
    const RecordId m_station;
    const std::unique_ptr<SQLite::Database> m_database;
    SQLite::Statement m_rows;  // their numbers, sorted
    SQLite::Statement m_row;
    SQLite::Statement m_text;
    bool m_broken = false;
    const std::optional<std::vector<std::string>> m_keys;
    std::unordered_map<std::int64_t, Known> m_layouts;
    std::unordered_map<std::uint64_t, std::string> m_texts;
};

}  // namespace vigil
