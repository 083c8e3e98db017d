#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/command/OpenMonitor.hpp"
#include "host/command/Refusal.hpp"
#include "host/site/SiteFile.hpp"

namespace vigil {

/// An open site and its monitors, for the commands about them. Needs the module. Main thread.
class MonitorSite {
  public:
    MonitorSite(std::unique_ptr<SiteFile> site, std::vector<StationRecord> stations, CommandContext& context)
        : m_site(std::move(site)), m_stations(std::move(stations)), m_context(context) {}

    SiteFile& site() { return *m_site; }
    std::string helper() const { return helperPath(m_context.programFolder); }

    /// The station that was named, or the only one where none was; else a refusal that lists those that there
    /// are.
    Result<StationRecord, Refusal> station(const std::optional<std::string>& name) const;
    /// The monitor of that title, or a refusal that lists those that there are.
    Result<PlugInRecord, Refusal> titled(const std::string& title) const;
    /// A title of its own where nobody gives one: "Vigil", "Vigil 2", …
    Result<std::string> unusedTitle() const;

    /// The station that a monitor watches.
    StationRecord stationOf(const PlugInRecord& record) const;
    StoredMonitor stored(const PlugInRecord& record) const;
    Result<std::unique_ptr<OpenMonitor>> open(const PlugInRecord& record) const;
    /// Prints it.
    std::optional<Refusal> show(const StoredMonitor& stored, bool json);

  private:
    std::unique_ptr<SiteFile> m_site;
    std::vector<StationRecord> m_stations;
    CommandContext& m_context;
};

}  // namespace vigil
