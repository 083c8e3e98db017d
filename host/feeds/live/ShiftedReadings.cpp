#include "host/feeds/live/ShiftedReadings.hpp"

#include <utility>
#include <vector>

namespace vigil {

std::shared_ptr<const Readings> shifted(const Readings& readings, double seconds) {
    std::vector<AgentProperty> entries;
    entries.reserve(readings.entries().size());
    for (const AgentProperty& entry : readings.entries()) {
        AgentProperty::Parts parts = entry.parts();
        if (parts.time) parts.time = parts.time->plus(seconds);
        if (entry.type() == kDateType) {
            parts.value += seconds;
            parts.unitValue += seconds;
            parts.stringValue.reset();  // tells the old date; without it the text follows from the value
            parts.unitStringValueWithUnitShort.reset();
        }
        entries.emplace_back(entry.label(), std::move(parts));
    }
    return Readings::make(readings.table(), std::move(entries));
}

}  // namespace vigil
