#include "host/command/CycleNote.hpp"

#include <algorithm>

namespace vigil {
namespace {

std::vector<std::string> sortedKeys(const ReadingsView& judged) {
    std::vector<std::string> keys;
    if (!judged.table) return keys;
    for (std::size_t slot = 0; slot < judged.table->size(); ++slot)
        if (judged.bySlot[slot]) keys.push_back(judged.bySlot[slot]->propertyName());
    std::sort(keys.begin(), keys.end());
    return keys;
}

}  // namespace

void CycleNote::cycleEnded(const Object&, const CycleReport& report) {
    cycle.outcome = report.outcome;
    cycle.next = report.next;
    if (m_inputs) cycle.inputs = sortedKeys(report.judged);
}

}  // namespace vigil
