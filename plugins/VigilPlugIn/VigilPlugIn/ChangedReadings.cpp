#include "plugins/VigilPlugIn/VigilPlugIn/ChangedReadings.hpp"

namespace vigil {
namespace {

bool counts(const AgentProperty& now, const AgentProperty* last) {
    const bool sameValue = (last ? last->value() : 0.0) == now.value();
    return !sameValue && isLaterThanDate(now.time(), last ? last->time() : std::nullopt);
}

}  // namespace

ReadingsView ChangedReadings::select(const Readings& batch,
                                     const std::optional<EvaluationDictionary>& snapshot) {
    const ReadingsView last = snapshot ? snapshot->view() : ReadingsView{};
    const bool sameTable = last.table == batch.table().get();
    m_bySlot.assign(batch.table()->size(), nullptr);
    const auto& entries = batch.entries();
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const KeyTable::Slot slot = batch.slotOf(i);
        const AgentProperty* before = sameTable ? last.at(slot) : last.find(entries[i].propertyName());
        if (counts(entries[i], before)) m_bySlot[slot] = &entries[i];
    }
    return {batch.table().get(), m_bySlot.data()};
}

}  // namespace vigil
