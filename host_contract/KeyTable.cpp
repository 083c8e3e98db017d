#include "host_contract/KeyTable.hpp"

#include <atomic>
#include <utility>

namespace vigil {
namespace {

std::atomic<std::uint64_t> g_tablesMade{0};

}  // namespace

KeyTable::KeyTable() : m_id(++g_tablesMade) {}

std::shared_ptr<const KeyTable> KeyTable::make(std::vector<std::string> keys) {
    std::shared_ptr<KeyTable> table(new KeyTable);
    table->m_keys.reserve(keys.size());  // the map's keys point into the strings, which must not move
    table->m_slots.reserve(keys.size());
    for (std::string& key : keys) {
        if (table->m_slots.contains(key)) continue;
        table->m_keys.push_back(std::move(key));
        table->m_slots.emplace(table->m_keys.back(), static_cast<Slot>(table->m_keys.size() - 1));
    }
    return table;
}

std::optional<KeyTable::Slot> KeyTable::slot(std::string_view key) const {
    const auto found = m_slots.find(key);
    if (found == m_slots.end()) return std::nullopt;
    return found->second;
}

}  // namespace vigil
