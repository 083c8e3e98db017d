#include <chrono>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>

#include <CLI/CLI.hpp>

#include "host/command/Commands.hpp"
#include "host/command/SiteChoice.hpp"
#include "host/command/StatusTable.hpp"
#include "host/feeds/FeedUrl.hpp"
#include "host/run/SiteSocket.hpp"
#include "host/run/StatusJson.hpp"
#include "host/services/SystemClock.hpp"
#include "host/site/SiteLock.hpp"

namespace vigil {
namespace {

struct StatusOptions {
    std::string site;
    bool json = false;
    bool watch = false;
};

/// What can be told of a site that nothing runs.
std::optional<SiteStatus> resting(const std::string& path, CommandContext& context) {
    auto file = openSite(path, Access::Read, context);
    if (!file) return std::nullopt;
    auto stations = file->stations();
    auto plugIns = file->plugIns();
    if (!stations || !plugIns) {
        context.output.error((stations ? plugIns.error() : stations.error()).message);
        context.status = ExitStatus::Environment;
        return std::nullopt;
    }
    SiteStatus status{.site = file->path()};
    status.now = systemNow();
    for (const StationRecord& record : stations.value()) {
        StationStatus station{.id = record.id, .name = record.name};
        const auto url = FeedUrl::parse(record.feed);
        station.feed = url ? url.value().masked() : record.feed;
        station.feedState = "not running";
        for (const PlugInRecord& plugIn : plugIns.value()) {
            if (plugIn.station != record.id) continue;
            MonitorStatus monitor{.id = plugIn.id, .title = plugIn.title};
            monitor.state = "not running";
            station.monitors.push_back(std::move(monitor));
        }
        status.stations.push_back(std::move(station));
    }
    return status;
}

std::optional<SiteStatus> look(const std::string& path, CommandContext& context) {
    const auto answer = SiteSocket::ask(path, "status");
    const long runner = SiteLock::holder(path);
    if (!answer && runner == 0) return resting(path, context);
    auto status = answer ? statusFromJson(answer.value()) : Result<SiteStatus>(answer.error());
    if (status) return std::move(status).value();
    context.output.error("process " + std::to_string(runner) + " runs " + path +
                         " and does not tell how it is: " + status.error().message);
    context.status = ExitStatus::Environment;
    return std::nullopt;
}

bool isWell(const SiteStatus& status) {
    return status.pid != 0 && status.problems.empty();
}

void show(const StatusOptions& options, CommandContext& context) {
    const bool colour = context.output.isTerminal() && !std::getenv("NO_COLOR");
    const auto path = siteOf(options.site, context);
    if (!path) return;
    while (const auto status = look(*path, context)) {
        if (options.watch && context.output.isTerminal()) context.output.write("\x1b[H\x1b[2J");
        if (options.json)
            context.output.write(statusJson(*status) + "\n");
        else
            context.output.write(statusTable(*status, colour));
        context.status = isWell(*status) ? ExitStatus::Yes : ExitStatus::No;
        if (!options.watch || !context.output.flush()) return;
        std::this_thread::sleep_for(std::chrono::seconds(1));
    }
}

}  // namespace

void addStatusCommand(CLI::App& app, CommandContext& context) {
    auto options = std::make_shared<StatusOptions>();
    auto* command = app.add_subcommand("status", "How the stations and monitors of a site are doing");
    addSiteOption(*command, options->site);
    auto* json = command->add_flag("--json", options->json, "One JSON object");
    command->add_flag("--watch", options->watch, "Stay, and show it again every second")->excludes(json);
    command->footer(
        "Exit status: 0 it runs and all is well, 1 it does not run or something is wrong.\n"
        "Examples:\n  vigil status\n  vigil status --watch");
    command->callback([options, &context] { show(*options, context); });
}

}  // namespace vigil
