#include "host/site/HistoryReader_Source.hpp"

#include <utility>

#include "host/site/HistoryFile.hpp"
#include "host/site/HistoryLayouts.hpp"
#include "host/site/HistoryReader_File.hpp"

namespace vigil {
namespace {

// Numbers alone are sorted here; the rows themselves follow one by one. The order is that of the arrival,
// also where the host's clock was set back.
constexpr const char* kRows =
    "SELECT id FROM notifications WHERE station = ? AND started >= ? AND started < ? ORDER BY id";
constexpr const char* kLast =
    "SELECT id FROM notifications WHERE station = ? AND started <= ? ORDER BY started DESC, id DESC LIMIT 1";
constexpr const char* kVeryLast =
    "SELECT id FROM notifications WHERE station = ? ORDER BY started DESC, id DESC LIMIT 1";
constexpr const char* kRow = "SELECT started, layout, readings FROM notifications WHERE id = ?";
constexpr const char* kText = "SELECT text FROM texts WHERE id = ?";

// What is written from now on is not seen: a transaction begins with its first reading.
void holdTheFile(SQLite::Database& database) {
    database.exec("BEGIN");
    database.execAndGet("SELECT count(*) FROM facts");
}

}  // namespace

HistorySource::~HistorySource() = default;

StoredSource::StoredSource(std::string path, RecordId station, const HistoryRange& range,
                           std::optional<std::vector<std::string>> keys)
    : m_path(std::move(path)),
      m_station(station),
      m_database(openHistoryForReading(m_path)),
      m_rows(*m_database, kRows),
      m_row(*m_database, kRow),
      m_text(*m_database, kText),
      m_keys(std::move(keys)) {
    holdTheFile(*m_database);
    m_rows.bind(1, station);
    bindRange(m_rows, 2, range);
}

StoredSource::StoredSource(std::string path, RecordId station, std::optional<Date> at)
    : m_path(std::move(path)),
      m_station(station),
      m_database(openHistoryForReading(m_path)),
      m_rows(*m_database, at ? kLast : kVeryLast),
      m_row(*m_database, kRow),
      m_text(*m_database, kText) {
    holdTheFile(*m_database);
    m_rows.bind(1, station);
    if (at) m_rows.bind(2, at->secondsSinceReference());
}

Result<std::optional<StoredNotification>> StoredSource::next() {
    try {
        if (m_broken || m_rows.isDone() || !m_rows.executeStep()) return std::optional<StoredNotification>();
        return unpack();
    } catch (const SQLite::Exception& what) {
        m_broken = true;
        return Error{"cannot read the history " + m_path + ": " + what.what()};
    }
}

Result<std::optional<StoredNotification>> StoredSource::unpack() {
    const std::int64_t id = m_rows.getColumn(0).getInt64();
    m_row.reset();
    m_row.bind(1, id);
    m_row.executeStep();
    StoredNotification notification;
    notification.station = m_station;
    notification.started = Date(m_row.getColumn(0).getDouble());
    const auto readings = m_row.getColumn(2);
    const std::string_view packed(static_cast<const char*>(readings.getBlob()),
                                  static_cast<std::size_t>(readings.getBytes()));
    const Known& known = layout(m_row.getColumn(1).getInt64());
    auto row = unpackRow(
        packed, known.layout, notification.started, [this](std::uint64_t number) { return text(number); },
        known.choice ? &*known.choice : nullptr);
    if (!row) return Error{m_path + ", notification " + std::to_string(id) + ": " + row.error().message};
    notification.sequence = row.value().sequence;
    notification.readings = std::move(row.value().readings);
    return std::optional(std::move(notification));
}

const StoredSource::Known& StoredSource::layout(std::int64_t id) {
    const auto found = m_layouts.find(id);
    if (found != m_layouts.end()) return found->second;
    Known known{.layout = readHistoryLayout(*m_database, id)};
    if (m_keys) known.choice.emplace(known.layout, *m_keys);
    return m_layouts.emplace(id, std::move(known)).first->second;
}

std::optional<std::string> StoredSource::text(std::uint64_t number) {
    const auto found = m_texts.find(number);
    if (found != m_texts.end()) return found->second;
    m_text.reset();
    m_text.bind(1, static_cast<std::int64_t>(number));
    if (!m_text.executeStep()) return std::nullopt;
    return m_texts.emplace(number, m_text.getColumn(0).getString()).first->second;
}

}  // namespace vigil
