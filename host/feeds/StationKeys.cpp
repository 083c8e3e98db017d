#include "host/feeds/StationKeys.hpp"

#include <utility>

#include "host/feeds/Recorded.hpp"

namespace vigil {

std::optional<std::size_t> StationKeys::find(std::string_view written, std::size_t guess) {
    if (guess < m_entries.size() && m_entries[guess].written == written) return guess;
    std::string name(written);
    if (const auto known = m_places.find(name); known != m_places.end()) return known->second;
    if (m_entries.size() == kMostKeysOfStation) return std::nullopt;
    m_entries.push_back({name, m_names.keyFor(written)});
    m_places.emplace(std::move(name), m_entries.size() - 1);
    m_table = nullptr;
    return m_entries.size() - 1;
}

const std::shared_ptr<const KeyTable>& StationKeys::table() {
    if (m_table) return m_table;
    std::vector<std::string> keys;
    keys.reserve(m_entries.size());
    for (const Entry& entry : m_entries)
        keys.push_back(entry.key);
    return m_table = KeyTable::make(std::move(keys));
}

}  // namespace vigil
