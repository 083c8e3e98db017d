#include "host/site/HistoryTexts.hpp"

#include <functional>

namespace vigil {

HistoryTexts::HistoryTexts(SQLite::Database& database)
    : m_insert(database, "INSERT INTO texts(id, text) VALUES(?, ?)") {
    SQLite::Statement all(database, "SELECT id, text FROM texts");
    while (all.executeStep())
        m_numbers.emplace(all.getColumn(1).getString(),
                          static_cast<std::uint64_t>(all.getColumn(0).getInt64()));
}

std::uint64_t HistoryTexts::numberOf(std::string_view text) {
    if (text.empty() || text.size() > kLongest) return 0;
    std::string key(text);
    if (const auto found = m_numbers.find(key); found != m_numbers.end()) return found->second;
    if (m_numbers.size() >= kMost) return 0;
    const std::size_t hash = std::hash<std::string_view>()(text);
    std::size_t& seen = m_seen[hash % m_seen.size()];
    if (seen != hash) return seen = hash, 0;
    const std::uint64_t number = m_numbers.size() + 1;
    m_insert.bind(1, static_cast<std::int64_t>(number));
    m_insert.bind(2, key.data(), static_cast<int>(key.size()));
    m_insert.exec();
    m_insert.reset();
    m_numbers.emplace(std::move(key), number);
    return number;
}

}  // namespace vigil
