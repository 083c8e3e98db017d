#include <unistd.h>

#include "host/kit/MonitorModule.hpp"
#include "host/run/PlugInState.hpp"
#include "host/run/RunningSite.hpp"

// How a running site is doing.

namespace vigil {
namespace {

const char* feedKindName(FeedState::Kind kind) {
    switch (kind) {
        case FeedState::Starting:
            return "starting";
        case FeedState::Live:
            return "live";
        case FeedState::Retrying:
            return "retrying";
        case FeedState::Ended:
            return "ended";
        case FeedState::Failed:
            return "failed";
    }
    return "";
}

/// A status grows with every cycle; its end says how things are.
std::string shortened(std::string text) {
    constexpr std::size_t kMost = 2000;
    if (text.size() <= kMost) return text;
    std::size_t begin = text.size() - kMost;
    while (begin < text.size() && (static_cast<unsigned char>(text[begin]) & 0xC0) == 0x80)
        ++begin;
    return "…" + text.substr(begin);
}

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : ", ") + word;
    return text;
}

}  // namespace

MonitorStatus RunningSite::statusOf(Entry& entry, const Readings& readings) {
    MonitorStatus status{.id = entry.record.id, .title = entry.record.title};
    status.waiting = entry.notes->count(CycleOutcome::Waiting);
    status.missed = entry.notes->count(CycleOutcome::Missed);
    status.fired = entry.notes->count(CycleOutcome::Fired);
    status.lastFire = entry.lastFire;
    if (const auto last = m_world.effects().last(entry.record.id)) {
        status.lastAction = last->what;
        status.lastResult = last->result;
        status.lastFailed = last->failed;
    }
    const auto is = [&](const char* state, std::string words) {
        status.state = state;
        status.words = std::move(words);
        return status;
    };
    if (!entry.hosted) return is("failed", "cannot be restored: " + entry.trouble);
    QRVPlugIn& plugIn = *entry.hosted->plugIn();
    status.active = entry.hosted->evaluating().value_or(true);
    status.condition = conditionText(plugIn);
    status.says = shortened(statusText(plugIn));
    if (entry.hosted->failure()) return is("failed", "stopped: " + *entry.hosted->failure());
    if (!entry.hosted->isStarted()) return is("failed", entry.trouble);
    if (!status.active) return is("not active", "not active");
    const auto until = retriggerDate(plugIn);
    if (until && until->secondsSince(m_world.now()) > 0) {
        status.waitsUntil = until;
        return is("waiting", "waiting after its fire");
    }
    if (readings.entries().empty()) return is("watching", "watching; no data yet");
    const auto missing = missingKeys(plugIn, readings);
    if (!missing.empty()) return is("cannot be judged", "cannot be judged: no reading " + joined(missing));
    return is("watching", "watching");
}

StationStatus RunningSite::statusOf(const RunningStation& station) {
    const auto counts = station.counts();
    StationStatus status{.id = station.record().id, .name = station.record().name};
    const auto url = FeedUrl::parse(station.record().feed);
    // One that cannot be read may hold what should not be shown.
    status.feed = url ? url.value().masked() : "(cannot be read)";
    status.feedState = station.record().feed.empty() ? "none" : feedKindName(counts.feed.kind);
    status.feedWords = counts.feed.words;
    status.lastData = counts.lastData;
    status.messages = counts.messages;
    status.notifications = counts.notifications;
    status.drops = counts.drops;
    status.queued = counts.queued;
    status.scripts = m_scripts.runner().queued(station.record().name);
    status.lastProblem = counts.lastProblem;
    return status;
}

SiteStatus RunningSite::status() {
    SiteStatus status{.site = m_site.path(), .version = m_options.version, .pid = ::getpid()};
    status.since = m_since;
    status.now = m_world.now();
    for (const auto& [id, station] : m_stations) {
        StationStatus shown = statusOf(*station);
        const auto readings = station->station()->properties();
        for (Entry& entry : m_entries)
            if (entry.record.station == id) shown.monitors.push_back(statusOf(entry, *readings));
        if (shown.feedState == "retrying" || shown.feedState == "failed")
            status.problems.push_back(shown.name + ": " + shown.feedWords);
        for (const MonitorStatus& monitor : shown.monitors) {
            if (monitor.state == "failed" || monitor.state == "cannot be judged")
                status.problems.push_back("\"" + monitor.title + "\" " + monitor.words);
            // What failed before this run was told then; only what fails in it is wrong now.
            const auto last = m_world.effects().last(monitor.id);
            if (last && last->failed && last->when >= m_since)
                status.problems.push_back("\"" + monitor.title + "\": " + monitor.lastAction + " " +
                                          monitor.lastResult);
        }
        status.stations.push_back(std::move(shown));
    }
    for (const auto& [id, trouble] : m_troubles)
        for (const std::string& words : trouble.words)
            status.problems.push_back(trouble.station + ": " + words);
    for (const auto& [of, words] : problems())
        status.problems.push_back(words);
    const auto writer = m_writer.state();
    status.writesWaiting = writer.waiting;
    status.writesRefused = writer.refused;
    status.commits = writer.commits;
    if (m_history) {
        const auto history = m_history->counts();
        status.historyWritten = history.written;
        status.historyLost = history.refused + history.failed;
        status.historyQueued = history.queued;
    }
    status.actions = m_world.effects().counts();
    status.actionFailures = m_world.effects().failures();
    const auto pool = m_pool.counts();
    status.threads = pool.threads;
    status.threadsAway = pool.away;
    if (m_options.lostLogLines) status.lostLogLines = m_options.lostLogLines();
    status.mainQueue = m_world.mailbox().waiting();
    status.judged = m_cycleTimes.judged.counts();
    status.fired = m_cycleTimes.fired.counts();
    status.notifications = m_notificationTimes.counts();
    return status;
}

}  // namespace vigil
