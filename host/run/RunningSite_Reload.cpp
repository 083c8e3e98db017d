#include <algorithm>
#include <utility>

#include <nlohmann/json.hpp>

#include "host/feeds/FeedUrl.hpp"
#include "host/kit/StandardLog.hpp"
#include "host/run/PlugInState.hpp"
#include "host/run/RunningSite.hpp"

// What somebody changed in the site file while it runs.

namespace vigil {
namespace {

bool isSame(const StationRecord& a, const StationRecord& b) {
    return a.name == b.name && a.feed == b.feed && a.usUnits == b.usUnits && a.units == b.units &&
           a.rolling == b.rolling;
}

/// By its archive; one that cannot be read counts as active.
bool isActiveArchive(const std::string& archive) {
    const auto json = nlohmann::json::parse(archive, nullptr, /*allow_exceptions=*/false);
    return !json.is_object() || !json.contains("root") || !json["root"].is_object() ||
           json["root"].value("evaluating", false);
}

template <class Record>
const Record* withId(const std::vector<Record>& records, RecordId id) {
    const auto found =
        std::find_if(records.begin(), records.end(), [id](const Record& record) { return record.id == id; });
    return found == records.end() ? nullptr : &*found;
}

}  // namespace

void RunningSite::reload() {
    auto stations = m_site.stations();
    auto plugIns = m_site.plugIns();
    if (!stations || !plugIns) {
        m_log.logLevel(kLogProblem, "the site cannot be read again, so all stays as it was: " +
                                        (stations ? plugIns.error() : stations.error()).message);
        return;
    }
    reload({.stations = std::move(stations).value(), .plugIns = std::move(plugIns).value()});
}

void RunningSite::reload(Rows rows) {
    Changes changes = removeChanged(rows.stations, rows.plugIns);
    std::size_t added = 0;
    for (const StationRecord& record : rows.stations) {
        if (m_stations.contains(record.id)) continue;
        addStation(record);
        startFeed(record.id);
        ++added;
    }
    for (PlugInRecord& record : rows.plugIns) {
        if (entryOf(record.id)) continue;
        auto asItIs = changes.archives.extract(record.id);
        if (asItIs) record.archive = std::move(asItIs.mapped());
        auto made = rows.made.extract(record.id);
        addPlugIn(std::move(record), made ? std::move(made.mapped()) : nullptr);
        Entry& entry = m_entries.back();
        if (asItIs) entry.savedHash = 0;  // the file holds an older one
        const auto before = changes.waits.find(entry.record.id);
        if (entry.hosted && before != changes.waits.end()) {
            waitAtLeastUntil(*entry.hosted->plugIn(), before->second);
            save(entry);
        } else if (entry.hosted && asItIs) {
            save(entry);
        }
        startPlugIn(entry, WatchReason::Changed);
        ++added;
    }
    m_log.logLevel(kLogNotice, "the site was read again: " + std::to_string(changes.removed) +
                                   " stations and monitors ended, " + std::to_string(added) + " began");
}

/// Ends what is not there any more, and what is there in another form.
RunningSite::Changes RunningSite::removeChanged(const std::vector<StationRecord>& stations,
                                                const std::vector<PlugInRecord>& plugIns) {
    Changes changes;
    std::vector<RecordId> ended;
    for (const auto& [id, running] : m_stations) {
        const StationRecord* record = withId(stations, id);
        if (!record || !isSame(*record, running->record())) ended.push_back(id);
    }
    for (std::size_t i = m_entries.size(); i-- > 0;) {
        Entry& entry = m_entries[i];
        const PlugInRecord* record = withId(plugIns, entry.record.id);
        const bool stationEnded = std::find(ended.begin(), ended.end(), entry.record.station) != ended.end();
        if (record && !stationEnded && record->edition == entry.record.edition) continue;
        // A wait is the plug-in's own, whatever else somebody has set.
        noteWait(entry, changes);
        // Where only its station changed, it goes on as it is now, and not as it was written down last.
        if (record && entry.hosted && record->edition == entry.record.edition)
            if (auto archive = archiveOf(entry))
                changes.archives[entry.record.id] = std::move(archive).value();
        const bool off = record && !stationEnded && !isActiveArchive(record->archive);
        if (!removeEntry(i, off ? WatchReason::Switched : WatchReason::Changed)) continue;
        ++changes.removed;
    }
    std::vector<std::string> names;
    for (const RecordId id : ended) {
        const auto& station = m_stations.at(id);
        station->close();
        names.push_back(station->record().name);
    }
    m_feeds.remove(names);
    for (const RecordId id : ended) {
        m_stations.erase(id);
        m_troubles.erase(id);
    }
    changes.removed += ended.size();
    return changes;
}

void RunningSite::noteWait(Entry& entry, Changes& changes) {
    if (!entry.hosted) return;
    QRVPlugIn& plugIn = *entry.hosted->plugIn();
    std::optional<Date> until = retriggerDate(plugIn);
    // A fire that has ended may not have set its wait yet.
    const auto ended = m_world.fires().lastEnd(entry.record.id);
    const auto wait = retriggerSeconds(plugIn);
    if (ended && wait) until = std::max(until.value_or(*ended), ended->plus(*wait));
    if (until) changes.waits[entry.record.id] = *until;
}

/// False where it does not let itself be stopped.
bool RunningSite::removeEntry(std::size_t index, WatchReason reason) {
    Entry& entry = m_entries[index];
    if (entry.hosted) {
        const auto plugIn = entry.hosted->plugIn();
        if (const auto obstacle = m_plugIns.remove(*plugIn)) {
            m_log.logLevel(kLogProblem, "\"" + entry.record.title +
                                            "\" was changed and does not stop: " + obstacle->description());
            return false;
        }
        m_world.fires().dismiss(*plugIn);
        if (m_history && entry.watching) m_history->stopped(entry.record.id, m_world.now(), reason);
    }
    m_entries.erase(m_entries.begin() + static_cast<std::ptrdiff_t>(index));
    return true;
}

}  // namespace vigil
