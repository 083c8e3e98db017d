#include "host/command/MonitorSite.hpp"

#include <utility>

#include "host/command/MonitorLines.hpp"

namespace vigil {

Result<StationRecord, Refusal> MonitorSite::station(const std::optional<std::string>& name) const {
    if (!name && m_stations.size() == 1) return m_stations[0];
    std::string names;
    for (const StationRecord& one : m_stations) {
        if (name && one.name == *name) return one;
        names += (names.empty() ? "" : ", ") + one.name;
    }
    if (names.empty())
        return badInput(m_site->path() +
                        " has no station yet; `vigil station create --help` shows how to make one");
    if (!name) return badInput("--station has to say which station; there are: " + names);
    return badInput("no station is called \"" + *name + "\" in " + m_site->path() + "; there are: " + names);
}

Result<PlugInRecord, Refusal> MonitorSite::titled(const std::string& title) const {
    auto found = m_site->plugInTitled(title);
    if (!found) return environment(found.error());
    if (found.value()) return *std::move(found).value();
    const auto all = m_site->plugIns();
    if (!all) return environment(all.error());
    std::string titles;
    for (const PlugInRecord& one : all.value())
        titles += (titles.empty() ? "" : ", ") + one.title;
    return badInput("no monitor is called \"" + title + "\" in " + m_site->path() +
                    (titles.empty() ? "; it has none" : "; there are: " + titles));
}

Result<std::string> MonitorSite::unusedTitle() const {
    const std::string first = "Vigil";
    std::string title = first;
    for (int number = 2;; ++number) {
        const auto taken = m_site->plugInTitled(title);
        if (!taken) return taken.error();
        if (!taken.value()) return title;
        title = first + " " + std::to_string(number);
    }
}

StationRecord MonitorSite::stationOf(const PlugInRecord& record) const {
    for (const StationRecord& one : m_stations)
        if (one.id == record.station) return one;
    return {};
}

StoredMonitor MonitorSite::stored(const PlugInRecord& record) const {
    return {.title = record.title, .station = stationOf(record).name, .archive = record.archive};
}

Result<std::unique_ptr<OpenMonitor>> MonitorSite::open(const PlugInRecord& record) const {
    return OpenMonitor::open(stored(record), helper());
}

std::optional<Refusal> MonitorSite::show(const StoredMonitor& stored, bool json) {
    const auto monitor = OpenMonitor::open(stored, helper());
    if (!monitor) return environment(monitor.error());
    m_context.output.write(json ? monitorJson(stored, *monitor.value())
                                : monitorLines(stored, *monitor.value()));
    return std::nullopt;
}

}  // namespace vigil
