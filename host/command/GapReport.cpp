#include "host/command/GapReport.hpp"

#include <algorithm>

#include <fmt/format.h>

#include "host/command/MonitorReplay.hpp"
#include "host/kit/InterfaceFile.hpp"
#include "host/kit/StandardLog.hpp"
#include "host/services/SystemClock.hpp"

namespace vigil {
namespace {

/// A shorter one is an ordinary restart.
constexpr double kShortestGap = 1;
constexpr std::size_t kMostNamed = 5;

const char* whyText(WatchReason why) {
    switch (why) {
        case WatchReason::Run:
            return "the service was stopped";
        case WatchReason::Switched:
            return "it was switched off";
        case WatchReason::Changed:
            return "it was changed";
        case WatchReason::Failed:
            return "it had failed";
        case WatchReason::Unknown:
            break;
    }
    return "the process ended without a word";
}

/// Whether there is a notification behind the last one that it saw: running a monitor over what it has seen
/// would cost the more the longer it has run, and tell nothing.
Result<bool> isAnythingKnown(HistoryReader& reader, RecordId station, const GapReport::Gap& gap) {
    const auto source = reader.source(station, {gap.from, gap.to});
    if (!source) return source.error();
    while (true) {
        const auto next = source.value()->next();
        if (!next) return next.error();
        if (!next.value()) return false;
        if (next.value()->started > gap.from) return true;
    }
}

Result<Done> fillIn(GapReport::Gap& gap, HistoryReader& reader, const StoredPlugIn& monitor,
                    const std::string& station, QRVLog& log, InterfaceFiles& interfaceFiles) {
    MonitorReplay replay(reader, monitor, station, log, interfaceFiles, {.always = true});
    return replay.run({gap.from, gap.to}, [&gap](const MonitorCycle& cycle) {
        if (cycle.notification.started <= gap.from) return;  // the last one that it saw
        ++gap.notifications;
        if (cycle.replayed->outcome == CycleOutcome::Fired)
            gap.wouldHaveFired.push_back(cycle.notification.started);
    });
}

}  // namespace

Result<GapReport> gapReport(HistoryReader& reader, const StoredPlugIn& monitor, const std::string& station,
                            Date now, const std::vector<FireRecord>& incomplete, QRVLog& log,
                            InterfaceFiles& interfaceFiles) {
    GapReport report{.title = monitor.title, .gaps = {}, .unfinished = {}};
    for (const FireRecord& fire : incomplete)
        if (fire.plugIn == monitor.id && !fire.completed) report.unfinished.push_back(fire.time);
    const auto watches = reader.watches(monitor.id, {std::nullopt, now});
    if (!watches) return watches.error();
    if (watches.value().empty()) return report;
    const StoredWatch& last = watches.value().back();
    const bool off = last.ended == WatchReason::Switched;
    if (!last.to || off || now.secondsSince(*last.to) < kShortestGap) return report;
    GapReport::Gap gap{.from = *last.to, .to = now, .why = last.ended.value_or(WatchReason::Unknown)};
    const auto known = isAnythingKnown(reader, monitor.station, gap);
    if (!known) return known.error();
    if (!known.value()) {
        report.gaps.push_back(std::move(gap));
        return report;
    }
    if (const auto filled = fillIn(gap, reader, monitor, station, log, interfaceFiles); !filled)
        return filled.error();
    report.gaps.push_back(std::move(gap));
    return report;
}

std::vector<std::string> gapSentences(const GapReport& report) {
    std::vector<std::string> said;
    for (const GapReport::Gap& gap : report.gaps) {
        std::string sentence = fmt::format("{}: not watched from {} to {} ({}).", report.title,
                                           gap.from.description(), gap.to.description(), whyText(gap.why));
        if (gap.notifications == 0) {
            sentence += " Nothing is known of that time.";
        } else if (gap.wouldHaveFired.empty()) {
            sentence += " It would not have fired.";
        } else {
            sentence += " It would have fired at ";
            for (std::size_t i = 0; i < gap.wouldHaveFired.size() && i < kMostNamed; ++i)
                sentence += (i > 0 ? ", " : "") + gap.wouldHaveFired[i].description();
            const bool more = gap.wouldHaveFired.size() > kMostNamed;
            sentence +=
                more ? fmt::format(" and {} times more.", gap.wouldHaveFired.size() - kMostNamed) : ".";
        }
        said.push_back(std::move(sentence));
    }
    for (const Date date : report.unfinished)
        said.push_back(
            fmt::format("{}: fired at {}, and its actions were cut short by the end of the process.",
                        report.title, date.description()));
    return said;
}

void tellGaps(const SiteFile& site, const RunningSite& running, QRVLog& log) {
    const auto reader = HistoryReader::open(site.path());
    const auto stations = site.stations();
    if (!reader || !stations) return;
    InterfaceFile interfaceFiles;
    std::size_t told = 0;
    for (const PlugInRecord& plugIn : running.activePlugIns()) {
        if (told == kMostTold) break;
        const auto station = std::find_if(stations.value().begin(), stations.value().end(),
                                          [&](const auto& one) { return one.id == plugIn.station; });
        if (station == stations.value().end()) continue;
        const auto report = gapReport(*reader.value(), {plugIn.id, plugIn.station, plugIn.title},
                                      station->name, systemNow(), running.unfinished(), log, interfaceFiles);
        if (!report)
            log.logLevel(kLogProblem,
                         "what \"" + plugIn.title + "\" missed is not known: " + report.error().message);
        const auto sentences = report ? gapSentences(report.value()) : std::vector<std::string>();
        if (!report || !sentences.empty()) ++told;
        for (const std::string& sentence : sentences)
            log.logLevel(kLogNotice, sentence);
    }
    if (told == kMostTold)
        log.logLevel(kLogNotice, "`vigil history` and `vigil why` tell what the other monitors missed");
}

}  // namespace vigil
