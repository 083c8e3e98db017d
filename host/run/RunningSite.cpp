#include "host/run/RunningSite.hpp"

#include <utility>

#include "host/feeds/wire/MakeDecoder.hpp"
#include "host/kit/KitClasses.hpp"
#include "host/kit/MonitorModule.hpp"
#include "host/kit/StandardLog.hpp"
#include "host/run/PlugInState.hpp"
#include "host/run/StationSetup.hpp"
#include "host/services/SystemClock.hpp"
#include "platform/ClassRegistry.hpp"

// How a site comes to run. Other files hold what it does then and how it ends.

namespace vigil {
namespace {

/// The class whose bundle holds the sounds that its actions play.
constexpr const char* kMonitorModuleClass = "QRVVigilPlugIn";

std::string folderOf(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash);
}

// An archive is by far the largest part of a record, and the running plug-in makes its own.
PlugInRecord withoutArchive(const PlugInRecord& record) {
    return {.id = record.id,
            .station = record.station,
            .className = record.className,
            .title = record.title,
            .edition = record.edition};
}

AutomationOptions automationOf(const RunningSite::Options& options) {
    AutomationOptions automation = options.automation;
    if (automation.helper.empty()) automation.helper = helperPath(options.programFolder);
    if (!automation.secret && options.secret)
        automation.secret = [secret = options.secret](const std::string& name) {
            return Result<std::optional<std::string>>(secret(name));
        };
    return automation;
}

}  // namespace

RunningSite::RunningSite(SiteFile& site, QRVLog& log, Options options)
    : m_site(site),
      m_log(log),
      m_options(std::move(options)),
      m_writer(site, {.now = systemNow}),
      m_world(log, m_interfaceFiles,
              m_options.scriptsFolder.empty() ? defaultScriptsFolder() : m_options.scriptsFolder, m_writer,
              {.helper = helperPath(m_options.programFolder), .setup = m_options.player},
              automationOf(m_options)),
      m_scripts(m_world.effects(), {.helper = helperPath(m_options.programFolder), .clock = systemNow},
                [this](const std::string& source) { return m_world.notedFiles().nameOf(source); }),
      m_pool(m_options.threads),
      m_feeds({.clock = systemNow, .folder = folderOf(site.path()), .secret = m_options.secret}),
      m_since(systemNow()) {
    if (m_options.turn) m_world.setMainTurn(m_options.turn);
}

Result<std::unique_ptr<RunningSite>> RunningSite::make(SiteFile& site, QRVLog& log, Options options) {
    if (auto loaded = loadMonitorModule(options.programFolder); !loaded) return loaded.error();
    std::unique_ptr<RunningSite> made(new RunningSite(site, log, std::move(options)));
    if (const auto bundle = ClassRegistry::shared().bundleForClass(kMonitorModuleClass))
        made->m_world.lookAtSounds(bundle->resourcePath);
    if (auto restored = made->restore(); !restored) return restored.error();
    return made;
}

RunningSite::~RunningSite() {
    stop();
}

Result<Done> RunningSite::restore() {
    auto interrupted = m_site.openLedger(m_world.now());
    if (!interrupted) return interrupted.error();
    if (m_options.history) {
        const auto tell = [this](const std::string& sentence) { m_log.logLevel(kLogProblem, sentence); };
        auto history =
            HistoryWriter::open(m_site.path(), {.retentionDays = m_options.historyDays, .tell = tell});
        // A history is a comfort; the watch goes on without it.
        if (!history)
            m_noHistory = "no history is kept: " + history.error().message;
        else
            m_history = std::move(history).value();
    }
    auto stations = m_site.stations();
    if (!stations) return stations.error();
    auto plugIns = m_site.plugIns();
    if (!plugIns) return plugIns.error();
    for (const StationRecord& record : stations.value())
        addStation(record);
    m_entries.reserve(plugIns.value().size());
    for (PlugInRecord& record : plugIns.value())
        addPlugIn(std::move(record));
    rememberLast();
    waitForUnfinished(interrupted.value());
    m_unfinished = interrupted.value().fires;
    reportInterrupted(interrupted.value());
    m_world.automationScripts().resume(interrupted.value().deferred);
    return Done{};
}

// What cannot be read is not shown; nothing depends on it.
void RunningSite::rememberLast() {
    if (const auto fires = m_site.lastFires())
        for (Entry& entry : m_entries)
            if (const auto found = fires.value().find(entry.record.id); found != fires.value().end())
                entry.lastFire = found->second;
    if (const auto effects = m_site.lastEffects())
        for (const EffectRecord& effect : effects.value())
            m_world.effects().remember(effect);
}

void RunningSite::addStation(const StationRecord& record) {
    auto station = std::make_shared<Station>(m_world, record.name, m_scripts);
    std::vector<std::string> problems;
    auto settings = readingsSettings(record, problems);
    for (const std::string& problem : problems) {
        m_troubles[record.id].station = record.name;
        m_troubles[record.id].words.push_back(problem);
        m_log.logLevel(kLogProblem, record.name + ": " + problem);
    }
    std::unique_ptr<Decoder> decoder;
    if (!record.feed.empty()) {
        const auto url = FeedUrl::parse(record.feed);
        if (url) decoder = makeDecoder(url.value());
    }
    const RunningStation::Surroundings around{
        .pool = m_pool,
        .world = m_world,
        .history = m_history.get(),
        .notificationTimes = m_notificationTimes,
        .settle = [this](std::vector<DeliveryFailure> failures) { m_plugIns.settle(std::move(failures)); },
        .complete = [this](std::vector<Fire> fires,
                           std::function<void()> durable) { complete(std::move(fires), std::move(durable)); },
    };
    m_stations[record.id] = std::make_shared<RunningStation>(around, record, std::move(station),
                                                             std::move(decoder), std::move(settings));
    if (m_history) m_history->named(record.id, record.name);
}

std::shared_ptr<Station> RunningSite::stationOf(RecordId id) const {
    const auto found = m_stations.find(id);
    return found == m_stations.end() ? nullptr : found->second->station();
}

void RunningSite::addPlugIn(PlugInRecord record, std::shared_ptr<QRVPlugIn> made) {
    Entry entry{.notes = std::make_shared<CycleNotes>(m_cycleTimes), .saved = Clock::now()};
    const auto station = stationOf(record.station);
    auto plugIn = made      ? Result<std::shared_ptr<QRVPlugIn>>(std::move(made))
                  : station ? monitorFromArchive(record.archive, station)
                            : Result<std::shared_ptr<QRVPlugIn>>(Error{"its station is not there"});
    if (!plugIn) {
        entry.trouble = plugIn.error().message;
        m_log.logLevel(kLogProblem, "\"" + record.title + "\" cannot be restored: " + entry.trouble);
        entry.record = std::move(record);
    } else {
        plugIn.value()->setTitle(record.title);
        if (CycleReporting* cycles = plugIn.value()->cycleReporting()) cycles->setCycleObserver(entry.notes);
        m_world.fires().enroll(*plugIn.value(), {record.id, station->name(), record.title});
        entry.hosted = &m_plugIns.add(std::move(plugIn).value());
        entry.hosted->load();
        entry.savedHash = std::hash<std::string>()(record.archive);
        entry.record = withoutArchive(record);
        if (m_history) m_history->archived(std::move(record), m_world.now(), ArchiveReason::Began);
    }
    m_entries.push_back(std::move(entry));
}

void RunningSite::start() {
    for (Entry& entry : m_entries)
        startPlugIn(entry, WatchReason::Run);
    for (const auto& [id, station] : m_stations)
        startFeed(id);
}

void RunningSite::startPlugIn(Entry& entry, WatchReason reason) {
    if (!entry.hosted) return;
    if (const auto obstacle = entry.hosted->start()) {
        entry.trouble = "it does not start: " + obstacle->description();
        m_log.logLevel(kLogProblem, "\"" + entry.record.title + "\": " + entry.trouble);
    } else if (entry.hosted->evaluating().value_or(true)) {
        entry.watching = true;
        if (m_history) m_history->started(entry.record.id, m_world.now(), reason);
    }
}

void RunningSite::startFeed(RecordId id) {
    const auto& station = m_stations.at(id);
    const StationRecord& record = station->record();
    if (record.feed.empty()) return;
    const auto url = FeedUrl::parse(record.feed);
    const auto added = url ? m_feeds.add(record.name, url.value(), station) : Result<Done>(url.error());
    if (added) return;
    station->state({FeedState::Failed, added.error().message, m_world.now()});
}

std::vector<PlugInRecord> RunningSite::activePlugIns() const {
    std::vector<PlugInRecord> active;
    for (const Entry& entry : m_entries)
        if (entry.hosted && entry.hosted->evaluating().value_or(true)) active.push_back(entry.record);
    return active;
}

std::string RunningSite::startText() {
    std::size_t active = 0;
    for (const Entry& entry : m_entries)
        if (entry.hosted && entry.hosted->isStarted() && entry.hosted->evaluating().value_or(true)) ++active;
    const auto counted = [](std::size_t count, const char* what) {
        return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
    };
    return m_site.path() + ": " + counted(m_stations.size(), "station") + ", " +
           counted(m_entries.size(), "monitor") + ", " + std::to_string(active) + " active";
}

}  // namespace vigil
