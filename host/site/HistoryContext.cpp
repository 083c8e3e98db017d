#include "host/site/HistoryContext.hpp"

#include <iterator>

namespace vigil {

void HistoryContext::note(const HistoryEvent& event) {
    if (const auto* named = std::get_if<StationNamed>(&event)) m_names[named->station] = *named;
    if (const auto* archive = std::get_if<ArchiveTaken>(&event)) m_archives[archive->plugIn->id] = *archive;
    if (const auto* began = std::get_if<WatchBegan>(&event)) m_watches.try_emplace(began->plugIn, *began);
    if (const auto* ended = std::get_if<WatchEnded>(&event)) m_watches.erase(ended->plugIn);
    const auto* forgotten = std::get_if<StationForgotten>(&event);
    if (!forgotten) return;
    m_names.erase(forgotten->station);
    for (auto next = m_archives.begin(); next != m_archives.end();) {
        const bool gone = next->second.plugIn->station == forgotten->station;
        if (gone) m_watches.erase(next->first);
        next = gone ? m_archives.erase(next) : std::next(next);
    }
}

std::vector<HistoryEvent> HistoryContext::events() const {
    std::vector<HistoryEvent> all;
    for (const auto& [id, named] : m_names)
        all.emplace_back(named);
    for (const auto& [id, archive] : m_archives)
        all.emplace_back(archive);
    for (const auto& [id, watch] : m_watches)
        all.emplace_back(watch);
    return all;
}

}  // namespace vigil
