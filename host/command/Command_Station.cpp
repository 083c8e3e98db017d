#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "host/command/Commands.hpp"
#include "host/command/KeyNote.hpp"
#include "host/command/PeopleName.hpp"
#include "host/command/Refusal.hpp"
#include "host/command/SiteChoice.hpp"
#include "host/command/SiteRunner.hpp"
#include "host/command/StationDraft.hpp"
#include "host/readings/RollingChoice.hpp"

namespace vigil {
namespace {

struct StationOptions {
    std::string site;
    std::string name;
    StationDraft draft;
    bool withMonitors = false;
    bool json = false;
};

using Run = std::optional<Refusal> (*)(SiteFile&, const StationOptions&, CommandContext&);

/// The station of that name, or a refusal that lists those that there are.
Result<StationRecord, Refusal> named(const SiteFile& site, const std::string& name) {
    auto found = site.stationNamed(name);
    if (!found) return environment(found.error());
    if (found.value()) return *std::move(found).value();
    auto all = site.stations();
    if (!all) return environment(all.error());
    std::string names;
    for (const StationRecord& one : all.value())
        names += (names.empty() ? "" : ", ") + one.name;
    return badInput("no station is called \"" + name + "\" in " + site.path() +
                    (names.empty() ? "; it has none" : "; there are: " + names));
}

std::optional<Refusal> print(const SiteFile& site, const StationRecord& station, bool json,
                             CommandContext& context) {
    const auto plugIns = site.plugIns();
    if (!plugIns) return environment(plugIns.error());
    const auto monitors = static_cast<std::size_t>(
        std::count_if(plugIns.value().begin(), plugIns.value().end(),
                      [&](const PlugInRecord& plugIn) { return plugIn.station == station.id; }));
    context.output.write(json ? stationJson(station, monitors) : stationLines(station, monitors));
    return std::nullopt;
}

std::optional<Refusal> list(SiteFile& site, const StationOptions& options, CommandContext& context) {
    const auto all = site.stations();
    if (!all) return environment(all.error());
    for (const StationRecord& station : all.value())
        if (auto refusal = print(site, station, options.json, context)) return refusal;
    if (all.value().empty() && !options.json)
        context.output.print("No station yet in {}; `vigil station create --help` shows how to make one.\n",
                             site.path());
    return std::nullopt;
}

std::optional<Refusal> show(SiteFile& site, const StationOptions& options, CommandContext& context) {
    const auto station = named(site, options.name);
    if (!station) return station.error();
    return print(site, station.value(), options.json, context);
}

/// Keys among what was said that are nearly those of known readings.
void noteKeys(const StationDraft& draft, const StationRecord& station, CommandContext& context) {
    const auto note = [&](std::string_view key, const std::vector<std::string>& own) {
        if (const std::string text = keyNote(key, own); !text.empty()) context.output.error(text);
    };
    for (const std::string& unit : draft.unit)
        if (!unit.ends_with('=')) note(unit.substr(0, unit.find('=')), rollingKeys(station.rolling));
    // What is made of a reading is no guess at that reading's name.
    for (const std::string& text : draft.rolling)
        if (const auto choice = RollingChoice::parse(text)) note(choice.value().source, {});
}

std::optional<Refusal> create(SiteFile& site, const StationOptions& options, CommandContext& context) {
    const auto name = nameFromUser("a station's name", options.name);
    if (!name) return badInput(name.error().message);
    StationRecord station = {.name = name.value()};
    if (const auto taken = apply(options.draft, station); !taken) return badInput(taken.error().message);
    if (const auto there = site.stationNamed(station.name); there && there.value())
        return badInput("a station called \"" + station.name +
                        "\" is there already; `vigil station edit` changes it");
    if (station.name.empty()) return badInput("a station needs a name");
    if (const auto added = site.addStation(station); !added) return environment(added.error());
    noteKeys(options.draft, station, context);
    tellRunner(site, context);
    return print(site, station, options.json, context);
}

std::optional<Refusal> edit(SiteFile& site, const StationOptions& options, CommandContext& context) {
    const auto found = named(site, options.name);
    if (!found) return found.error();
    StationRecord station = found.value();
    if (const auto taken = apply(options.draft, station); !taken) return badInput(taken.error().message);
    if (station.name != options.name) {
        const auto name = nameFromUser("a station's name", station.name);
        if (!name) return badInput(name.error().message);
        station.name = name.value();
        if (station.name.empty()) return badInput("a station needs a name");
        const auto other = site.stationNamed(station.name);
        if (station.name != options.name && other && other.value())
            return badInput("the name \"" + station.name + "\" cannot be used: another station has it");
    }
    if (const auto changed = site.editStation(station); !changed) return environment(changed.error());
    noteKeys(options.draft, station, context);
    tellRunner(site, context);
    return print(site, station, options.json, context);
}

std::optional<Refusal> remove(SiteFile& site, const StationOptions& options, CommandContext& context) {
    const auto station = named(site, options.name);
    if (!station) return station.error();
    const auto plugIns = site.plugIns();
    if (!plugIns) return environment(plugIns.error());
    std::string titles;
    for (const PlugInRecord& plugIn : plugIns.value())
        if (plugIn.station == station.value().id) titles += (titles.empty() ? "" : ", ") + plugIn.title;
    if (!titles.empty() && !options.withMonitors)
        return badInput("\"" + options.name + "\" has monitors (" + titles +
                        "); --with-monitors removes them, too");
    if (const auto removed = site.removeStation(station.value().id); !removed)
        return environment(removed.error());
    context.output.print("Removed \"{}\"{} from {}.\n", options.name,
                         titles.empty() ? "" : " and its monitors", site.path());
    tellRunner(site, context);
    return std::nullopt;
}

void addSettings(CLI::App& command, StationDraft& draft) {
    command.add_option("--feed", draft.feed, "Where its readings come from; docs/feeds.md tells the forms")
        ->type_name("URL");
    command.add_option("--units", draft.units, "metric or us, where --unit says nothing else")
        ->type_name("SYSTEM")
        ->check(CLI::IsMember({"metric", "us"}));
    command
        .add_option("--unit", draft.unit,
                    "The unit of one reading; again for each (on edit, KEY= takes it back)")
        ->type_name("KEY=UNIT")
        ->take_all()
        ->expected(1);
    command
        .add_option("--rolling", draft.rolling,
                    "A reading made of another one's last minutes; again for each")
        ->type_name("TEXT")
        ->take_all()
        ->expected(1);
}

}  // namespace

void addStationCommand(CLI::App& app, CommandContext& context) {
    auto options = std::make_shared<StationOptions>();
    auto* station = app.add_subcommand("station", "Make, show and change the stations of a site");
    station->require_subcommand(1);
    station->footer(
        "Examples:\n"
        "  vigil station create Home --feed 'upload://127.0.0.1:8090/'\n"
        "  vigil station create Radio --feed 'exec:rtl_433 -F json' --units us --unit windSpeed=kn\n"
        "  vigil station edit Home --rolling 'windSpeed mean 10' --rolling 'outsideTemp below 0'");
    const auto add = [&](const char* name, const char* purpose, Access access, Run run) {
        auto* command = station->add_subcommand(name, purpose);
        addSiteOption(*command, options->site);
        command->callback([options, access, run, &context] {
            const auto site = openSite(options->site, access, context);
            if (!site) return;
            if (const auto refusal = run(*site, *options, context)) tell(context, *refusal);
        });
        return command;
    };
    const auto withName = [&](CLI::App* command) {
        command->add_option("NAME", options->name, "The station's name")->required();
        return command;
    };
    const auto json = [&](CLI::App* command) {
        command->add_flag("--json", options->json,
                          "One JSON object a station; docs/formats/site.md tells its form");
        return command;
    };
    json(add("list", "All stations of a site", Access::Read, list));
    json(withName(add("show", "One station", Access::Read, show)));
    addSettings(*json(withName(add("create", "A new station", Access::Edit, create))), options->draft);
    auto* editing =
        json(withName(add("edit", "Change a station; what is not named stays", Access::Edit, edit)));
    addSettings(*editing, options->draft);
    editing->add_option("--name", options->draft.name, "A new name")->type_name("NAME");
    editing->add_flag("--no-rolling", options->draft.noRolling, "Take all rolling readings back");
    withName(add("remove", "Remove a station", Access::Edit, remove))
        ->add_flag("--with-monitors", options->withMonitors, "And the monitors that watch it");
}

}  // namespace vigil
