#include "plugins/VigilPlugIn/VigilPlugIn/ChangedReadings.hpp"

namespace vigil {
namespace {

bool counts(const AgentProperty& now, const AgentProperty* last) {
    const bool sameValue = (last ? last->value() : 0.0) == now.value();
    return !sameValue && isLaterThanDate(now.time(), last ? last->time() : std::nullopt);
}

// The entry of that key in the snapshot.
const AgentProperty* lastOf(const AgentProperty& now, KeyTable::Slot slot, const ReadingsView& last,
                            const KeyTable& table) {
    return last.table == &table ? last.at(slot) : last.find(now.propertyName());
}

}  // namespace

ReadingsView ChangedReadings::select(const Readings& batch,
                                     const std::optional<EvaluationDictionary>& snapshot) {
    const ReadingsView last = snapshot ? snapshot->view() : ReadingsView{};
    const KeyTable& table = *batch.table();
    m_bySlot.assign(table.size(), nullptr);
    const auto& entries = batch.entries();
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const KeyTable::Slot slot = batch.slotOf(i);
        if (counts(entries[i], lastOf(entries[i], slot, last, table))) m_bySlot[slot] = &entries[i];
    }
    return {&table, m_bySlot.data()};
}

ReadingsView ChangedReadings::select(const Readings& batch,
                                     const std::optional<EvaluationDictionary>& snapshot,
                                     const std::vector<KeyTable::Slot>& slots) {
    // Of several readings with one key each has to be looked at.
    if (batch.hasDuplicates()) return select(batch, snapshot);
    const ReadingsView last = snapshot ? snapshot->view() : ReadingsView{};
    const KeyTable& table = *batch.table();
    m_bySlot.resize(table.size());
    for (const KeyTable::Slot slot : slots) {
        const AgentProperty* now = batch.view().at(slot);
        m_bySlot[slot] = now && counts(*now, lastOf(*now, slot, last, table)) ? now : nullptr;
    }
    return {&table, m_bySlot.data()};
}

}  // namespace vigil
