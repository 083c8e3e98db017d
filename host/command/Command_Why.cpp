#include <memory>
#include <string>

#include <CLI/CLI.hpp>

#include "host/command/Commands.hpp"
#include "host/command/HistoryChoice.hpp"
#include "host/command/ReplayLog.hpp"
#include "host/command/SiteChoice.hpp"
#include "host/command/TimeText.hpp"
#include "host/command/WhyAnswer.hpp"
#include "host/kit/InterfaceFile.hpp"
#include "host/kit/MonitorModule.hpp"
#include "host/kit/StandardLog.hpp"
#include "host/services/SystemClock.hpp"
#include "host/site/SiteFile.hpp"

namespace vigil {
namespace {

struct WhyOptions {
    HistoryChoice choice;
    std::string monitor;
    std::string at;
    bool json = false;
};

void refuse(CommandContext& context, ExitStatus status, const std::string& why) {
    context.output.error(why);
    context.status = status;
}

void why(const WhyOptions& options, CommandContext& context) {
    std::optional<Date> at;
    if (!options.at.empty()) {
        const auto read = timeFromUser(options.at, systemNow());
        if (!read) return refuse(context, ExitStatus::BadInput, "--at: " + read.error().message);
        at = read.value();
        if (*at > systemNow())
            return refuse(context, ExitStatus::BadInput, "--at: " + timeForPeople(*at) + " is yet to come");
    }
    const auto history = openHistory(options.choice, context);
    const auto* monitor = history ? chooseMonitor(*history, options.monitor, context) : nullptr;
    if (!monitor) return;
    if (const auto loaded = loadMonitorModule(context.programFolder); !loaded)
        return refuse(context, ExitStatus::Environment, loaded.error().message);
    InterfaceFile interfaceFiles;
    const Date now;
    ReplayLog log(context.output, kLogProblem, now);
    const std::string station = history->stationName(monitor->station);
    MonitorReplay replay(*history->reader, *monitor, station, log, interfaceFiles, {.trace = true});
    const auto answer = whyAt(replay, *history->reader, monitor->station, at);
    if (!answer) return refuse(context, ExitStatus::Environment, answer.error().message);
    if (!answer.value())
        return refuse(context, ExitStatus::No,
                      "no readings of " + station + " are stored" +
                          (at ? " from " + timeForPeople(*at) + " or before" : ""));
    context.output.write(options.json ? whyJson(*answer.value(), monitor->title, station)
                                      : whyText(*answer.value(), monitor->title, station));
    if (answer.value()->reason != WhyAnswer::Reason::Fired) context.status = ExitStatus::No;
}

}  // namespace

void addWhyCommand(CLI::App& app, CommandContext& context) {
    auto options = std::make_shared<WhyOptions>();
    auto* command = app.add_subcommand("why", "Why did a monitor fire, or why not?");
    addSiteOption(*command, options->choice.site);
    command->add_option("--monitor", options->monitor, "Which monitor, where there are several")
        ->type_name("TITLE");
    command
        ->add_option("--at", options->at,
                     "The last readings at that time or before; without it the latest. 2026-11-20T10:34, "
                     "\"3 days ago\", -3h; local without a zone")
        ->type_name("TIME");
    command->add_flag("--json", options->json, "One JSON object");
    command->footer(
        "Runs the monitor's own module over the stored history up to that time: each comparison of its\n"
        "condition with the reading, how far that is from turning it, and what held the monitor back.\n"
        "The status is 0 when it fired, 1 when it did not, 2 for a name or time that is none, 3 without a\n"
        "history.\n"
        "Examples:\n"
        "  vigil why --monitor Frost\n"
        "  vigil why --monitor Frost --at \"90 min ago\"");
    command->callback([options, &context] { why(*options, context); });
}

}  // namespace vigil
