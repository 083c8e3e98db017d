#include "host/readings/StationTable.hpp"

#include <utility>

#include "host/readings/Units.hpp"

namespace vigil {

std::size_t StationTable::find(std::string_view written, std::size_t guess) const {
    if (guess < m_entries.size() && m_entries[guess].written == written && !m_entries[guess].reserved)
        return guess;
    const auto found = m_places.find(written);
    return found == m_places.end() ? kNowhere : found->second;
}

std::size_t StationTable::findOrAdd(std::string_view written, std::size_t guess) {
    const std::size_t found = find(written, guess);
    if (found != kNowhere || m_entries.size() == StationReadings::kMostKeys) return found;
    const std::size_t index = add(std::string(written), m_names.keyFor(written));
    m_places.emplace(written, index);
    return index;
}

void StationTable::reserve(const std::string& key) {
    m_names.keyFor(key);
}

std::size_t StationTable::addReserved(const std::string& key) {
    if (m_entries.size() == StationReadings::kMostKeys) return kNowhere;
    const std::size_t index = add(key, key);
    m_entries[index].reserved = true;
    return index;
}

std::size_t StationTable::add(std::string written, std::string key) {
    const std::size_t index = m_entries.size();
    const KnownReading* known = knownReading(written);
    m_entries.push_back(
        {.written = std::move(written), .key = std::move(key), .known = known, .next = index + 1});
    m_keys = nullptr;
    return index;
}

void StationTable::settleUnits(StationEntry& entry, Unit unit, std::string_view text) const {
    if (entry.taken && entry.sentUnit == unit && entry.sentText == text) return;
    entry.taken = true;
    entry.sentUnit = unit;
    entry.sentText = text;
    entry.ownText = false;
    if (unit == Unit::None && !text.empty()) {
        const auto meant = unitFromText(text);
        entry.ownText = !meant;
        unit = meant.value_or(Unit::None);
    }
    const Unit held = entry.known ? entry.known->held : Unit::None;
    const bool hasOwn = held == Unit::None || entry.ownText;
    entry.held = entry.ownText ? Unit::None : hasOwn ? heldUnit(unit) : held;
    entry.from = unit == Unit::None ? entry.held : unit;
    entry.wrongUnit = !convertible(entry.from, entry.held);
    entry.bounds = entry.ownText ? Bounds{}
                   : entry.known ? entry.known->bounds
                                 : boundsOf(quantityOf(entry.held));
    entry.shown = shownUnit(entry.held, m_settings.system);
    const auto chosen = m_settings.units.find(entry.key);
    if (chosen != m_settings.units.end() && convertible(entry.held, chosen->second))
        entry.shown = chosen->second;
}

const std::shared_ptr<const AgentPropertyLabel>& StationTable::label(StationEntry& entry,
                                                                     std::string_view name,
                                                                     std::string_view unit, FourCharCode type,
                                                                     bool visible) const {
    if (name.empty()) name = entry.known ? entry.known->name : std::string_view(entry.written);
    const auto& old = entry.label;
    if (old && old->type == type && old->visible == visible && old->unit == unit && old->name == name)
        return entry.label;
    return entry.label = std::make_shared<const AgentPropertyLabel>(
               AgentPropertyLabel{entry.key, repairedUtf8(name), repairedUtf8(unit), type, visible});
}

const std::shared_ptr<const KeyTable>& StationTable::keys() {
    if (m_keys) return m_keys;
    std::vector<std::string> keys;
    keys.reserve(m_entries.size());
    for (const StationEntry& entry : m_entries)
        keys.push_back(entry.key);
    return m_keys = KeyTable::make(std::move(keys));
}

}  // namespace vigil
