#include "host/command/MonitorReplay.hpp"

#include <algorithm>
#include <utility>

#include "host/command/WhyAnswer.hpp"
#include "host/kit/ExceptionText.hpp"
#include "host/kit/MonitorModule.hpp"
#include "platform/InterfaceOwner.hpp"

namespace vigil {

MonitorReplay::MonitorReplay(HistoryReader& reader, StoredPlugIn monitor, const std::string& station,
                             QRVLog& log, InterfaceFiles& interfaceFiles, Options options)
    : m_reader(reader),
      m_record(std::move(monitor)),
      m_options(options),
      m_world(log, interfaceFiles, /*scriptsFolder=*/""),
      m_scripts(m_world),
      m_station(std::make_shared<Station>(m_world, station, m_scripts)),
      m_note(std::make_shared<CycleNote>(options.trace)) {}

MonitorReplay::~MonitorReplay() = default;

Result<Done> MonitorReplay::load(const HistoryRange& range) {
    auto archives = m_reader.archives(m_record.id, {std::nullopt, range.until});
    if (!archives) return archives.error();
    m_archives = std::move(archives).value();
    if (m_archives.empty())
        return Error{"the history holds no state of \"" + m_record.title +
                     "\" from before then, so it cannot be replayed"};
    auto watches = m_reader.watches(m_record.id);
    if (!watches) return watches.error();
    m_watches = std::move(watches).value();
    auto fires = m_reader.fires(m_record.id);
    if (!fires) return fires.error();
    m_fires = std::move(fires).value();
    for (std::size_t i = 0; i < m_archives.size(); ++i)
        if (!range.since || m_archives[i].from <= *range.since) m_nextArchive = range.since ? i : 0;
    const Date begin = m_archives[m_nextArchive].from;
    while (m_nextFire < m_fires.size() && m_fires[m_nextFire].started < begin)
        ++m_nextFire;
    return Done{};
}

Result<Done> MonitorReplay::run(const HistoryRange& range, const Told& told) {
    if (const auto loaded = load(range); !loaded) return loaded.error();
    m_world.turnTo(m_archives[m_nextArchive].from);
    if (const auto made = make(m_archives[m_nextArchive++].archive); !made) return made.error();
    const Date begin = m_archives[m_nextArchive - 1].from;
    const auto source = m_reader.source(m_record.station, {begin, range.until});
    if (!source) return source.error();
    for (;;) {
        const auto next = source.value()->next();
        if (!next) {
            ++m_unreadable;
            continue;
        }
        if (!next.value()) return Done{};
        const StoredNotification& notification = *next.value();
        if (const auto brought = bringUpTo(notification.started); !brought) return brought.error();
        const bool watched = m_options.always || watchedAt(notification.started);
        const bool firedThen = fireAt(notification.started) != nullptr;
        if (watched)
            if (const auto shown = show(notification); !shown) return shown.error();
        if (!range.since || notification.started >= *range.since)
            told({notification, watched, firedThen, watched ? &m_note->cycle : nullptr});
    }
}

// What a monitor saved by itself is where a replay may begin; in its middle the replay has its own state.
Result<Done> MonitorReplay::bringUpTo(Date time) {
    for (; m_nextArchive < m_archives.size() && m_archives[m_nextArchive].from <= time; ++m_nextArchive) {
        if (m_archives[m_nextArchive].reason == ArchiveReason::Saved) continue;
        m_world.turnTo(m_archives[m_nextArchive].from);
        if (const auto made = make(m_archives[m_nextArchive].archive); !made) return made.error();
    }
    return Done{};
}

Result<Done> MonitorReplay::make(const std::string& archive) {
    const World::Scope scope(m_world);
    if (m_monitor) m_monitor->stop();
    auto made = monitorFromArchive(archive, m_station);
    if (!made) return Error{"\"" + m_record.title + "\" cannot be made again: " + made.error().message};
    m_monitor = std::move(made).value();
    if (CycleReporting* cycles = m_monitor->cycleReporting()) cycles->setCycleObserver(m_note);
    switchOn();
    if (const auto obstacle = m_monitor->start())
        return Error{"\"" + m_record.title + "\" does not start: " + obstacle->description()};
    return Done{};
}

std::shared_ptr<ConditionPredicate> MonitorReplay::conditionIn(const std::string& archive) {
    const World::Scope scope(m_world);
    const auto monitor = monitorFromArchive(archive, m_station);
    return monitor ? conditionOf(*monitor.value()) : nullptr;
}

// Whether it watched is told by what was recorded, not by the switch that the archive holds.
void MonitorReplay::switchOn() {
    InterfaceOwner* owner = m_monitor->interfaceOwner();
    const auto* evaluating = owner ? owner->propertyNamed("evaluating") : nullptr;
    if (evaluating && evaluating->set) evaluating->set(*owner, Value(true));
}

// A watch holds its last moment: where a process died, that is the last notification it saw.
bool MonitorReplay::watchedAt(Date time) const {
    return std::any_of(m_watches.begin(), m_watches.end(), [time](const StoredWatch& watch) {
        return watch.from <= time && (!watch.to || time <= *watch.to);
    });
}

const StoredFire* MonitorReplay::fireAt(Date time) {
    while (m_nextFire < m_fires.size() && m_fires[m_nextFire].started < time)
        ++m_nextFire;
    if (m_nextFire == m_fires.size() || m_fires[m_nextFire].started != time) return nullptr;
    return &m_fires[m_nextFire];
}

Result<Done> MonitorReplay::show(const StoredNotification& notification) {
    m_world.turnTo(notification.started);
    if (const StoredFire* fire = fireAt(notification.started))
        m_world.setNextHandOver(fire->actionsBegan, fire->actionsEnded);
    const auto failures = m_station->announce(notification.readings);
    m_world.forgetHandOver();
    m_scripts.take();
    m_world.effects().take();
    if (!failures.empty())
        return Error{"\"" + m_record.title + "\" failed: " + exceptionText(failures.front().what)};
    m_note->cycle.time = notification.started;
    m_note->cycle.station = m_station->name();
    if (m_options.trace) m_note->cycle.status = statusText(*m_monitor);
    return Done{};
}

}  // namespace vigil
