#include <memory>
#include <string>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "host/command/Commands.hpp"
#include "host/command/Printable.hpp"
#include "host/command/SiteChoice.hpp"
#include "host/command/TimeText.hpp"
#include "host/run/EffectLedger.hpp"
#include "host/services/SystemClock.hpp"

namespace vigil {
namespace {

struct ActionsOptions {
    std::string site;
    std::string monitor;
    std::string station;
    std::string since;
    std::size_t limit = 100;
    bool failed = false;
    bool json = false;
};

std::string stateText(const EffectRecord& effect) {
    if (effect.state == EffectRecord::Queued) return "queued";
    if (effect.state == EffectRecord::Started) return "running";
    return effect.result;
}

std::string jsonLine(const EffectRecord& effect) {
    nlohmann::ordered_json json{{"queued", effect.queued.isoText(3)},
                                {"station", effect.station},
                                {"monitor", effect.title},
                                {"kind", effectKindName(effect.kind)},
                                {"what", effect.what},
                                {"state", stateText(effect)},
                                {"test", effect.fire == 0}};
    if (effect.started) json["started"] = effect.started->isoText(3);
    if (effect.state == EffectRecord::Ended) {
        if (effect.ended) json["ended"] = effect.ended->isoText(3);
        json["detail"] = effect.detail;
    }
    return json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

void print(const EffectRecord& effect, Output& output) {
    output.print("{}  {}{}  {} \"{}\"  {}{}\n", timeForPeople(effect.queued),
                 effect.title.empty() ? "?" : printable(effect.title), effect.fire == 0 ? " (test)" : "",
                 effectKindName(effect.kind), printable(effect.what), isFailure(effect) ? "! " : "",
                 stateText(effect));
    const std::string detail = printable(effect.detail, /*lines=*/true);
    for (std::size_t begin = 0; begin < detail.size();) {
        const std::size_t end = std::min(detail.find('\n', begin), detail.size());
        output.print("    {}\n", detail.substr(begin, end - begin));
        begin = end + 1;
    }
}

/// Whether there is such a monitor and station, where one was named.
bool isKnown(const SiteFile& file, const ActionsOptions& options, CommandContext& context) {
    const auto unknown = [&](const char* what, const std::string& name) {
        context.output.error(std::string("no ") + what + " is called \"" + name + "\" in " + file.path());
        context.status = ExitStatus::BadInput;
        return false;
    };
    const auto plugIn = file.plugInTitled(options.monitor);
    if (!options.monitor.empty() && plugIn && !plugIn.value()) return unknown("monitor", options.monitor);
    const auto station = file.stationNamed(options.station);
    if (!options.station.empty() && station && !station.value()) return unknown("station", options.station);
    return true;
}

void list(const ActionsOptions& options, CommandContext& context) {
    EffectQuery query{.limit = options.limit};
    query.failed = options.failed;
    if (!options.monitor.empty()) query.title = options.monitor;
    if (!options.station.empty()) query.station = options.station;
    if (!options.since.empty()) {
        const auto since = timeFromUser(options.since, systemNow());
        if (!since) {
            context.output.error("--since: " + since.error().message);
            context.status = ExitStatus::BadInput;
            return;
        }
        query.since = since.value();
    }
    const auto file = openSite(options.site, Access::Read, context);
    if (!file) return;
    const auto effects = file->effects(query);
    if (!effects) {
        context.output.error(effects.error().message);
        context.status = ExitStatus::Environment;
        return;
    }
    if (effects.value().empty() && !isKnown(*file, options, context)) return;
    bool any = false;
    for (const EffectRecord& effect : effects.value()) {
        any = any || isFailure(effect);
        if (options.json)
            context.output.write(jsonLine(effect));
        else
            print(effect, context.output);
    }
    if (effects.value().empty() && !options.json)
        context.output.write(options.failed ? "Nothing has failed.\n" : "Nothing has been done yet.\n");
    if (any) context.status = ExitStatus::No;
}

}  // namespace

void addActionsCommand(CLI::App& app, CommandContext& context) {
    auto options = std::make_shared<ActionsOptions>();
    auto* command = app.add_subcommand("actions", "What the monitors of a site did, and what came of it");
    addSiteOption(*command, options->site);
    command->add_option("--monitor", options->monitor, "Of this monitor only")->type_name("TITLE");
    command->add_option("--station", options->station, "Of this station only")->type_name("NAME");
    command
        ->add_option("--since", options->since,
                     "From then on: 2026-11-20, 2026-11-20T10:34Z, \"3 days ago\", -3h; local without a zone")
        ->type_name("TIME");
    command->add_option("--limit", options->limit, "The newest so many (100)")
        ->type_name("N")
        ->check(CLI::Range(1, 1000000));
    command->add_flag("--failed", options->failed, "Only what did not do what it should");
    command->add_flag("--json", options->json, "One JSON object a line");
    command->footer(
        "Exit status: 0 all did what they should, 1 something failed.\n"
        "Examples:\n  vigil actions\n  vigil actions --failed --since 2026-11-01");
    command->callback([options, &context] { list(*options, context); });
}

}  // namespace vigil
