#include "host/site/HistoryEvents.hpp"

#include <map>
#include <utility>

namespace vigil {

std::size_t sizeOf(const HistoryEvent& event) {
    std::size_t size = sizeof(HistoryEvent);
    if (const auto* archive = std::get_if<ArchiveTaken>(&event))
        size += sizeof(PlugInRecord) + archive->plugIn->archive.size() + archive->plugIn->title.size();
    if (const auto* named = std::get_if<StationNamed>(&event)) size += named->name->size();
    return size;
}

void keepNewestArchives(std::vector<HistoryEvent>& events) {
    std::map<RecordId, std::size_t> places;
    std::vector<HistoryEvent> kept;
    for (HistoryEvent& event : events) {
        auto* const archive = std::get_if<ArchiveTaken>(&event);
        const auto known = archive ? places.find(archive->plugIn->id) : places.end();
        if (known == places.end()) {
            if (archive) places[archive->plugIn->id] = kept.size();
            kept.push_back(std::move(event));
            continue;
        }
        auto& older = std::get<ArchiveTaken>(kept[known->second]);
        if (archive->reason == ArchiveReason::Saved && older.reason != ArchiveReason::Saved)
            archive->reason = ArchiveReason::Edited;
        older = std::move(*archive);
    }
    events = std::move(kept);
}

}  // namespace vigil
