#include "host/command/Replay.hpp"

#include "host/kit/ExceptionText.hpp"
#include "host/kit/MonitorModule.hpp"

namespace vigil {

struct Replay::Site {
    Site(const std::string& name, QRVLog& log, InterfaceFiles& files, bool trace)
        : world(log, files, /*scriptsFolder=*/""),
          scripts(world),
          station(std::make_shared<Station>(world, name, scripts)),
          note(std::make_shared<CycleNote>(trace)) {}

    ReplayWorld world;
    RecordedScripts scripts;
    std::shared_ptr<Station> station;
    std::shared_ptr<CycleNote> note;
    std::shared_ptr<QRVPlugIn> monitor;
};

Replay::Replay(MonitorDraft draft, QRVLog& log, InterfaceFiles& interfaceFiles, bool trace)
    : m_draft(std::move(draft)), m_log(log), m_interfaceFiles(interfaceFiles), m_trace(trace) {}

Replay::~Replay() = default;

Result<Replay::Site*> Replay::siteOf(const std::string& station) {
    auto& place = m_sites[station];
    if (place) return place.get();
    auto site = std::make_unique<Site>(station, m_log, m_interfaceFiles, m_trace);
    auto monitor = monitorFromArchive(archiveText(m_draft), site->station);
    if (!monitor) return monitor.error();
    site->monitor = monitor.value();
    if (CycleReporting* cycles = site->monitor->cycleReporting()) cycles->setCycleObserver(site->note);
    const World::Scope scope(site->world);
    if (const auto obstacle = site->monitor->start())
        return Error{"the monitor does not start: " + obstacle->description()};
    place = std::move(site);
    return place.get();
}

Result<Done> Replay::run(const RecordedNotification& notification, const Told& told) {
    const auto found = siteOf(notification.station);
    if (!found) return found.error();
    Site& site = *found.value();
    site.world.turnTo(notification.time);
    const auto failures = site.station->announce(notification.readings);
    if (!failures.empty()) return Error{"the monitor failed: " + exceptionText(failures.front().what)};
    ReplayedCycle& cycle = site.note->cycle;
    cycle.station = notification.station;
    cycle.time = notification.time;
    if (m_trace) cycle.status = statusText(*site.monitor);
    site.scripts.take();
    told(cycle);
    return Done{};
}

}  // namespace vigil
