#include <utility>

#include "host/readings/StationReadings_State.hpp"

namespace vigil {

bool StationReadings::State::isInBatch(const StationEntry& entry) const {
    if (!entry.current) return false;
    if (entry.news == news) return true;
    return besides && entry.sent && !entry.missing && entry.heard &&
           arrived.secondsSince(*entry.heard) <= settings.freshSeconds;
}

void StationReadings::State::put(StationEntry& entry, AgentProperty reading) {
    entry.current = std::move(reading);
    entry.heard = arrived;
    entry.news = news;
}

std::shared_ptr<const Readings> StationReadings::State::batch() {
    std::vector<AgentProperty> entries;
    entries.reserve(table.size());
    for (const StationEntry& entry : table.entries())
        if (isInBatch(entry)) entries.push_back(*entry.current);
    current = nullptr;
    return Readings::make(table.keys(), std::move(entries));
}

}  // namespace vigil
