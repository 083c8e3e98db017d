#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/command/CycleNote.hpp"
#include "host/command/MonitorDraft.hpp"
#include "host/feeds/Recorded.hpp"
#include "host/kit/RecordedScripts.hpp"
#include "host/kit/ReplayWorld.hpp"
#include "host/kit/Station.hpp"
#include "host_contract/QRVPlugIn.hpp"

namespace vigil {

/// Runs the monitor's own module over recorded readings: the clock is turned by the records, scripts are
/// noted and forgotten. Every station of the records has a monitor and a world of its own. One thread.
class Replay {
  public:
    using Told = std::function<void(const ReplayedCycle&)>;

    /// `trace` asks for inputs and status, which cost time to build. The module must be loaded.
    Replay(MonitorDraft draft, QRVLog& log, InterfaceFiles& interfaceFiles, bool trace);
    ~Replay();

    /// Runs one notification. An error when the monitor cannot be made or throws.
    Result<Done> run(const RecordedNotification& notification, const Told& told);

  private:
    struct Site;
    Result<Site*> siteOf(const std::string& station);

    const MonitorDraft m_draft;
    QRVLog& m_log;
    InterfaceFiles& m_interfaceFiles;
    const bool m_trace;
    std::map<std::string, std::unique_ptr<Site>> m_sites;
};

}  // namespace vigil
