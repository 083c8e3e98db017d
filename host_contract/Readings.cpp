#include "host_contract/Readings.hpp"

#include <stdexcept>
#include <utility>

namespace vigil {

const AgentProperty* ReadingsView::find(std::string_view key) const {
    if (!table) return nullptr;
    const auto slot = table->slot(key);
    return slot ? bySlot[*slot] : nullptr;
}

std::shared_ptr<const Readings> Readings::make(std::shared_ptr<const KeyTable> table,
                                               std::vector<AgentProperty> entries) {
    std::shared_ptr<Readings> batch(new Readings);
    batch->m_table = std::move(table);
    batch->m_entries = std::move(entries);
    batch->m_slots.reserve(batch->m_entries.size());
    batch->m_bySlot.assign(batch->m_table->size(), nullptr);
    KeyTable::Slot next = 0;
    for (std::size_t i = 0; i < batch->m_entries.size(); ++i) {
        const std::string& key = batch->m_entries[i].propertyName();
        // Batches of one station follow the table entry by entry, but for those that are missing.
        const bool inPlace = next < batch->m_table->size() && batch->m_table->key(next) == key;
        const auto slot = inPlace ? next : batch->m_table->slot(key);
        if (!slot) throw std::out_of_range("reading \"" + key + "\" is not in the table of its batch");
        next = *slot + 1;
        batch->m_slots.push_back(*slot);
        const AgentProperty*& place = batch->m_bySlot[*slot];
        if (place) batch->m_hasDuplicates = true;
        place = &batch->m_entries[i];
    }
    return batch;
}

std::shared_ptr<const Readings> Readings::make(std::vector<AgentProperty> entries) {
    std::vector<std::string> keys;
    keys.reserve(entries.size());
    for (const AgentProperty& entry : entries)
        keys.push_back(entry.propertyName());
    return make(KeyTable::make(std::move(keys)), std::move(entries));
}

// Called under the lock. The view is valid until the next call.
std::string_view Readings::printed(std::size_t entry) const {
    Piece& piece = m_printedPieces[entry];
    if (piece.end == 0) {
        piece.begin = m_printedText.size();
        (m_printedText += m_entries[entry].propertyName()) += " = ";
        m_entries[entry].appendUnitString(m_printedText);
        piece.end = m_printedText.size();
    }
    return std::string_view(m_printedText).substr(piece.begin, piece.end - piece.begin);
}

void Readings::appendDescription(std::string& to, const ReadingsView& judged) const {
    constexpr std::size_t kUsualBytes = 32;
    const std::lock_guard lock(m_printMutex);
    if (m_printedPieces.empty()) {
        m_printedPieces.resize(m_entries.size());
        m_printedText.reserve(m_entries.size() * kUsualBytes);
    }
    to += '{';
    bool first = true;
    for (std::size_t slot = 0; slot < m_table->size(); ++slot) {
        const AgentProperty* entry = judged.bySlot[slot];
        if (!entry) continue;
        if (!first) to += ", ";
        first = false;
        to += printed(static_cast<std::size_t>(entry - m_entries.data()));
    }
    to += '}';
}

std::string Readings::className() const {
    return "Readings";
}

std::string Readings::description() const {
    std::string text;
    appendDescription(text, view());
    return text;
}

}  // namespace vigil
