#include <algorithm>
#include <utility>

#include "host/run/RunningSite.hpp"

// What people see and change of a site while it runs.

namespace vigil {

HostedPlugIn* RunningSite::plugIn(RecordId id) {
    Entry* entry = entryOf(id);
    return entry ? entry->hosted : nullptr;
}

std::vector<StationRecord> RunningSite::stations() const {
    std::vector<StationRecord> all;
    for (const auto& [id, station] : m_stations)
        all.push_back(station->record());
    return all;
}

std::vector<PlugInRecord> RunningSite::plugIns(RecordId station) const {
    std::vector<PlugInRecord> all;
    for (const Entry& entry : m_entries)
        if (entry.record.station == station) all.push_back(entry.record);
    return all;
}

std::optional<RunningStation::Counts> RunningSite::counts(RecordId station) const {
    const auto found = m_stations.find(station);
    if (found == m_stations.end()) return std::nullopt;
    return found->second->counts();
}

Result<Done> RunningSite::setEvaluating(RecordId plugIn, bool on) {
    Entry* entry = entryOf(plugIn);
    if (!entry || !entry->hosted) return Error{"the monitor is not there any more"};
    const bool before = entry->hosted->evaluating().value_or(false);
    const auto turned = entry->hosted->setEvaluating(on);
    if (!turned) return turned.error();
    const bool now = entry->hosted->isStarted() && entry->hosted->evaluating().value_or(false);
    if (now != entry->watching) {
        entry->watching = now;
        if (m_history && now) m_history->started(plugIn, m_world.now(), WatchReason::Switched);
        if (m_history && !now) m_history->stopped(plugIn, m_world.now(), WatchReason::Switched);
    }
    if (before != on) save(*entry);
    if (turned.value()) return Error{"\"" + entry->record.title + "\": " + turned.value()->description()};
    return Done{};
}

void RunningSite::edited(RecordId plugIn) {
    Entry* entry = entryOf(plugIn);
    if (!entry || !entry->hosted) return;
    if (m_history && entry->watching) {
        PlugInRecord record = entry->record;
        if (auto archive = archiveOf(*entry)) {
            record.archive = std::move(archive).value();
            m_history->archived(record, m_world.now(), ArchiveReason::Edited);
        }
    }
    save(*entry);
}

Result<Done> RunningSite::setTitle(RecordId plugIn, const std::string& title) {
    Entry* entry = entryOf(plugIn);
    if (!entry) return Error{"the monitor is not there any more"};
    if (title.empty()) return Error{"a monitor needs a title"};
    for (const Entry& other : m_entries)
        if (&other != entry && other.record.title == title)
            return Error{"another monitor is called \"" + title + "\" already"};
    if (!entry->hosted) return Error{"a monitor that could not be restored keeps its title"};
    entry->record.title = title;
    entry->hosted->call([&](QRVPlugIn& one) { one.setTitle(title); });
    const auto station = stationOf(entry->record.station);
    m_world.fires().enroll(*entry->hosted->plugIn(), {plugIn, station ? station->name() : "", title});
    entry->notes->noteUnsaved();
    save(*entry);
    return Done{};
}

Result<std::string> RunningSite::archiveText(RecordId plugIn) {
    Entry* entry = entryOf(plugIn);
    if (!entry || !entry->hosted) return Error{"the monitor is not there any more"};
    return archiveOf(*entry);
}

std::string RunningSite::unusedTitle(const std::string& first) const {
    std::string title = first;
    const auto taken = [&](const Entry& entry) { return entry.record.title == title; };
    for (int number = 2; std::any_of(m_entries.begin(), m_entries.end(), taken); ++number)
        title = first + " " + std::to_string(number);
    return title;
}

}  // namespace vigil
