#include <memory>
#include <string>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "host/command/AbsentReadings.hpp"
#include "host/command/Commands.hpp"
#include "host/command/ConditionAnswer.hpp"
#include "host/command/FeedOptions.hpp"
#include "host/command/HistoryReplay.hpp"
#include "host/command/Replay.hpp"
#include "host/command/ReplayLines.hpp"
#include "host/command/ReplayLog.hpp"
#include "host/kit/InterfaceFile.hpp"
#include "host/kit/MonitorModule.hpp"
#include "host/kit/StandardLog.hpp"

namespace vigil {
namespace {

struct ReplayOptions {
    FeedOptions feed;
    HistoryReplayOptions history;
    std::string condition;
    double retrigger = 1;
    bool onChange = false;
    bool trace = false;
    bool json = false;
    bool log = false;
};

MonitorDraft draftOf(const ConditionPredicate& condition, const ReplayOptions& options) {
    MonitorDraft draft;
    draft.condition = condition.printed();
    draft.retriggerMinutes = options.retrigger;
    draft.onlyOnChange = options.onChange;
    return draft;
}

void fail(CommandContext& context, const std::string& text) {
    context.output.error(text);
    context.status = ExitStatus::Environment;
}

/// Replays until the source ends. False when something stood in the way, which has then been told.
bool replayAll(RecordedSource& source, Replay& replay, const Replay::Told& told, AbsentReadings& absent,
               Date& now, CommandContext& context) {
    for (;;) {
        const auto next = source.next();
        if (!next) return fail(context, next.error().message), false;
        if (!next.value()) return true;
        absent.note(*next.value()->readings);
        now = next.value()->time;
        if (const auto done = replay.run(*next.value(), told); !done)
            return fail(context, done.error().message), false;
    }
}

void replay(const ReplayOptions& options, CommandContext& context) {
    const auto condition = conditionFromUser(options.condition, context);
    if (!condition) return;
    if (const auto loaded = loadMonitorModule(context.programFolder); !loaded)
        return fail(context, loaded.error().message);
    FeedReport report(options.feed.path, context.output);
    const auto source = openFeed(options.feed, report, context);
    if (!source) return;

    InterfaceFile interfaceFiles;
    Date now = Date::distantPast();
    ReplayLog log(context.output, options.log ? kLogDetail : kLogProblem, now);
    Replay run(draftOf(*condition, options), log, interfaceFiles, options.trace);
    const bool prompt = options.feed.path == "-" || context.output.isTerminal();
    AbsentReadings absent(condition->tree());
    ReplayCounts counts;
    const auto told = [&](const ReplayedCycle& cycle) {
        counts.add(cycle);
        if (!options.trace && cycle.outcome != CycleOutcome::Fired) return;
        context.output.write(options.json ? replayJson(cycle, options.trace)
                                          : replayLine(cycle, options.trace));
        if (prompt) context.output.flush();
    };
    const bool whole = replayAll(*source, run, told, absent, now, context);
    report.finish();
    absent.tell(context.output);
    if (whole && counts.notifications == 0) return tellNothingCame(options.feed, report, context);
    if (!options.json) context.output.write(counts.sentence());
    if (!whole) return;
    if (counts.fired == 0) context.status = ExitStatus::No;
}

}  // namespace

void addReplayCommand(CLI::App& app, CommandContext& context) {
    auto options = std::make_shared<ReplayOptions>();
    auto* command = app.add_subcommand("replay", "When would a monitor have fired on recorded readings?");
    auto* file = command->add_option("FILE", options->feed.path,
                                     "JSON lines or CSV with a header; - for standard input");
    auto* condition =
        command->add_option("--condition", options->condition, "The monitor's condition, as one argument")
            ->type_name("CONDITION");
    auto* monitor = command
                        ->add_option("--monitor", options->history.monitor,
                                     "Instead of FILE and --condition: a monitor of a site, over its history")
                        ->type_name("TITLE")
                        ->excludes(condition)
                        ->excludes(file);
    command
        ->add_option("--retrigger", options->retrigger, "Minutes to wait after a fire, fractions allowed (1)")
        ->type_name("MINUTES")
        ->check([](const std::string& text) {
            const bool usable =
                !text.empty() && text.front() != '-' && text.find_first_of("nN") == std::string::npos;
            return usable ? std::string() : "--retrigger: expected a number of minutes, 0 or more";
        });
    command->add_flag("--on-change", options->onChange,
                      "Judge only readings that are newer and have changed");
    command->add_flag("--trace", options->trace, "Tell of every notification, not only of those that fired");
    command->add_flag("--json", options->json,
                      "One JSON object a line; docs/formats/replay.md tells its form");
    command->add_flag("--log", options->log, "Write the monitor's log to the error stream");
    addFeedOptions(*command, options->feed);
    addHistoryOptions(*command, options->history.choice);
    command->footer(
        "Runs the monitor's own module on a clock that the records turn; no action is run.\n"
        "The status is 0 when it would have fired at least once, 1 when never, 2 when nothing could be "
        "read.\n"
        "With --monitor it tells the fires that were recorded and those of the replay; the status is 1 when\n"
        "they differ.\n"
        "Examples:\n"
        "  vigil replay station.csv --condition 'windSpeed.unitValue > 25'\n"
        "  vigil replay station.csv --condition 'outsideTemp.unitValue < 0' --retrigger 60 --trace --json\n"
        "  vigil replay --monitor Frost --since \"3 days ago\"");
    command->callback([options, command, file, condition, monitor, &context] {
        if (monitor->count() > 0) {
            for (const char* of : {"--retrigger", "--on-change", "--units", "--station", "--separator",
                                   "--time-column", "--station-column"})
                if (command->get_option(of)->count() > 0)
                    throw CLI::ValidationError(of, "is for FILE and --condition; --monitor has its own");
            options->history.trace = options->trace;
            options->history.json = options->json;
            options->history.log = options->log;
            return replayHistory(options->history, context);
        }
        for (const char* of : {"--site", "--since", "--until"})
            if (command->get_option(of)->count() > 0) throw CLI::ValidationError(of, "needs --monitor");
        if (file->count() == 0) throw CLI::RequiredError("FILE");
        if (condition->count() == 0) throw CLI::RequiredError("--condition");
        replay(*options, context);
    });
}

}  // namespace vigil
