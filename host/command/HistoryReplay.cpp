#include "host/command/HistoryReplay.hpp"

#include <fmt/format.h>

#include "host/command/MonitorReplay.hpp"
#include "host/command/ReadingLines.hpp"
#include "host/command/ReplayLines.hpp"
#include "host/command/ReplayLog.hpp"
#include "host/command/TimeText.hpp"
#include "host/kit/InterfaceFile.hpp"
#include "host/kit/MonitorModule.hpp"
#include "host/kit/StandardLog.hpp"

namespace vigil {
namespace {

/// What then and now say of the notifications.
struct Agreement {
    std::size_t notifications = 0, watched = 0, fired = 0, replayed = 0, differ = 0;

    void add(const MonitorCycle& cycle, bool fires) {
        ++notifications;
        watched += cycle.watched ? 1 : 0;
        fired += cycle.firedThen ? 1 : 0;
        replayed += fires ? 1 : 0;
        differ += fires != cycle.firedThen ? 1 : 0;
    }
};

std::string json(const MonitorCycle& cycle, bool fires, bool trace) {
    std::string line = cycle.replayed ? replayJson(*cycle.replayed, trace)
                                      : fmt::format("{{\"time\":\"{}\",\"outcome\":\"unwatched\"}}\n",
                                                    exactIsoText(cycle.notification.started));
    line.resize(line.size() - 2);
    return line +
           fmt::format(",\"firedThen\":{},\"agrees\":{}}}\n", cycle.firedThen, fires == cycle.firedThen);
}

std::string text(const MonitorCycle& cycle, bool fires, bool trace) {
    std::string line = cycle.replayed
                           ? replayLine(*cycle.replayed, trace, [](Date date) { return timeForPeople(date); })
                           : fmt::format("{}  unwatched\n", timeForPeople(cycle.notification.started));
    if (fires == cycle.firedThen) return line;
    line.pop_back();
    return line + (fires ? "  (did not fire then)\n" : "  (fired then)\n");
}

std::string sentence(const Agreement& found, const std::string& title) {
    std::string said =
        fmt::format("{} fired {} time{} then and {} time{} in the replay of {} notification{}", title,
                    found.fired, found.fired == 1 ? "" : "s", found.replayed, found.replayed == 1 ? "" : "s",
                    found.notifications, found.notifications == 1 ? "" : "s");
    if (found.watched < found.notifications)
        said += fmt::format(" (it did not watch {} of them)", found.notifications - found.watched);
    if (found.differ == 0) return said + ": they agree.\n";
    return said + fmt::format(": they differ at {}.\n", found.differ);
}

std::string summaryJson(const Agreement& found) {
    return fmt::format(
        "{{\"notifications\":{},\"watched\":{},\"fired\":{},\"replayed\":{},\"differ\":{},\"agrees\":{}}}\n",
        found.notifications, found.watched, found.fired, found.replayed, found.differ, found.differ == 0);
}

void fail(CommandContext& context, const std::string& why) {
    context.output.error(why);
    context.status = ExitStatus::Environment;
}

}  // namespace

void replayHistory(const HistoryReplayOptions& options, CommandContext& context) {
    const auto history = openHistory(options.choice, context);
    const auto* monitor = history ? chooseMonitor(*history, options.monitor, context) : nullptr;
    if (!monitor) return;
    if (const auto loaded = loadMonitorModule(context.programFolder); !loaded)
        return fail(context, loaded.error().message);
    InterfaceFile interfaceFiles;
    Date now = Date::distantPast();
    ReplayLog log(context.output, options.log ? kLogDetail : kLogProblem, now);
    MonitorReplay replay(*history->reader, *monitor, history->stationName(monitor->station), log,
                         interfaceFiles, {.trace = options.trace});
    Agreement found;
    const auto done = replay.run(history->range, [&](const MonitorCycle& cycle) {
        now = cycle.notification.started;
        const bool fires = cycle.replayed && cycle.replayed->outcome == CycleOutcome::Fired;
        found.add(cycle, fires);
        if (!options.trace && !fires && !cycle.firedThen) return;
        context.output.write(options.json ? json(cycle, fires, options.trace)
                                          : text(cycle, fires, options.trace));
    });
    if (!done) return fail(context, done.error().message);
    if (replay.unreadable() > 0)
        fail(context, fmt::format("{} stored notifications could not be read", replay.unreadable()));
    context.output.write(options.json ? summaryJson(found) : sentence(found, monitor->title));
    if (found.differ > 0 && context.status == ExitStatus::Yes) context.status = ExitStatus::No;
}

}  // namespace vigil
