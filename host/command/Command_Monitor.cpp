#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "host/command/Commands.hpp"
#include "host/command/ConditionAnswer.hpp"
#include "host/command/MinutesCheck.hpp"
#include "host/command/MonitorNotes.hpp"
#include "host/command/MonitorSite.hpp"
#include "host/command/MonitorTest.hpp"
#include "host/command/PeopleName.hpp"
#include "host/command/Refusal.hpp"
#include "host/command/SettingsChoice.hpp"
#include "host/command/SiteChoice.hpp"
#include "host/command/SiteRunner.hpp"
#include "host/kit/MonitorModule.hpp"
#include "host/services/SystemClock.hpp"

namespace vigil {
namespace {

struct MonitorOptions {
    std::string site;
    std::string title;
    bool titled = false;  ///< whether one was given
    std::optional<std::string> station;
    std::optional<std::string> newTitle, condition;
    std::optional<double> retrigger;
    std::optional<bool> onChange, active;
    std::vector<std::string> actions;
    bool json = false;
};

/// Takes over what was said of a monitor. Nothing where all of it was; `left` says what is so where a
/// condition is none.
std::optional<Refusal> apply(const MonitorOptions& options, OpenMonitor& monitor, CommandContext& context,
                             const char* left) {
    if (options.condition) {
        const auto condition = conditionFromUser(*options.condition, context);
        if (!condition) return badInput(left);
        monitor.set("predicate", Value(std::static_pointer_cast<Object>(condition)));
    }
    if (options.retrigger) monitor.set("retriggerInterval", Value(*options.retrigger));
    if (options.onChange) monitor.set("triggerOnlyOnChange", Value(*options.onChange));
    if (options.active) monitor.set("evaluating", Value(*options.active));
    if (options.actions.empty()) return std::nullopt;
    for (std::size_t i = 0; i < options.actions.size(); ++i)
        if (const auto done = monitor.setAction(static_cast<std::int64_t>(i), options.actions[i]); !done)
            return badInput(done.error().message);
    while (monitor.numberOfActions() > static_cast<std::int64_t>(options.actions.size()))
        monitor.removeAction(monitor.numberOfActions() - 1);
    return std::nullopt;
}

using Run = std::optional<Refusal> (*)(MonitorSite&, const MonitorOptions&, CommandContext&);

void onSite(const MonitorOptions& options, Access access, CommandContext& context, Run run) {
    if (const auto loaded = loadMonitorModule(context.programFolder); !loaded)
        return tell(context, environment(loaded.error()));
    const auto path = siteOf(options.site, context);
    if (!path) return;
    auto site = openSite(*path, access, context);
    if (!site) {
        if (const std::string hint = monitorsFromBefore(*path); !hint.empty()) context.output.error(hint);
        return;
    }
    auto stations = site->stations();
    if (!stations) return tell(context, environment(stations.error()));
    MonitorSite monitors(std::move(site), std::move(stations).value(), context);
    if (const std::optional<Refusal> refusal = run(monitors, options, context)) tell(context, *refusal);
}

std::optional<Refusal> list(MonitorSite& monitors, const MonitorOptions& options, CommandContext& context) {
    const auto all = monitors.site().plugIns();
    if (!all) return environment(all.error());
    for (const PlugInRecord& one : all.value())
        if (auto refusal = monitors.show(monitors.stored(one), options.json)) return refusal;
    if (all.value().empty() && !options.json)
        context.output.print("No monitor yet in {}; `vigil monitor create --help` shows how to make one.\n",
                             monitors.site().path());
    return std::nullopt;
}

std::optional<Refusal> show(MonitorSite& monitors, const MonitorOptions& options, CommandContext&) {
    const auto record = monitors.titled(options.title);
    if (!record) return record.error();
    return monitors.show(monitors.stored(record.value()), options.json);
}

void tellNotes(const OpenMonitor& monitor, const StationRecord& station, MonitorNotes how,
               CommandContext& context) {
    how.scriptsFolder = effective(settingsOrDefaults()).run.scripts;
    how.now = systemNow();
    for (const std::string& note : monitorNotes(monitor, station, how))
        context.output.error(note);
}

std::optional<Refusal> create(MonitorSite& monitors, const MonitorOptions& options, CommandContext& context) {
    SiteFile& site = monitors.site();
    const auto typed = nameFromUser("a monitor's title", options.title);
    if (!typed) return badInput(typed.error().message);
    const auto title = options.titled ? typed : monitors.unusedTitle();
    if (!title) return environment(title.error());
    if (title.value().empty()) return badInput("a monitor needs a title");
    if (const auto there = site.plugInTitled(title.value()); there && there.value())
        return badInput("a monitor called \"" + title.value() +
                        "\" is there already; `vigil monitor edit` changes it");
    const auto station = monitors.station(options.station);
    if (!station) return station.error();
    const auto monitor = OpenMonitor::make(station.value().name, title.value(), monitors.helper());
    if (!monitor) return environment(monitor.error());
    if (auto refusal = apply(options, *monitor.value(), context, "no monitor was made")) return refusal;
    auto stored = monitor.value()->stored();
    if (!stored) return environment(stored.error());
    const auto added = site.addPlugIn({.station = station.value().id,
                                       .className = kMonitorClass,
                                       .title = title.value(),
                                       .archive = stored.value().archive});
    if (!added) return environment(added.error());
    tellNotes(*monitor.value(), station.value(), {.judgesDefault = !options.condition}, context);
    tellRunner(site, context);
    return monitors.show(stored.value(), options.json);
}

std::optional<Refusal> edit(MonitorSite& monitors, const MonitorOptions& options, CommandContext& context) {
    SiteFile& site = monitors.site();
    auto found = monitors.titled(options.title);
    if (!found) return found.error();
    PlugInRecord record = std::move(found).value();
    std::string title = options.title;
    if (options.newTitle) {
        const auto typed = nameFromUser("a monitor's title", *options.newTitle);
        if (!typed) return badInput(typed.error().message);
        title = typed.value();
    }
    if (title.empty()) return badInput("a monitor needs a title");
    const auto other = site.plugInTitled(title);
    if (title != options.title && other && other.value())
        return badInput("the title \"" + title + "\" cannot be used: another monitor has it");
    const auto monitor = monitors.open(record);
    if (!monitor) return environment(monitor.error());
    monitor.value()->setTitle(title);
    if (auto refusal = apply(options, *monitor.value(), context, "the monitor was left as it was"))
        return refusal;
    auto stored = monitor.value()->stored();
    if (!stored) return environment(stored.error());
    record.title = title;
    record.archive = stored.value().archive;
    if (const auto changed = site.editPlugIn(record); !changed) return environment(changed.error());
    tellNotes(*monitor.value(), monitors.stationOf(record), {.waitChanged = options.retrigger.has_value()},
              context);
    tellRunner(site, context);
    return monitors.show(stored.value(), options.json);
}

std::optional<Refusal> remove(MonitorSite& monitors, const MonitorOptions& options, CommandContext& context) {
    const auto record = monitors.titled(options.title);
    if (!record) return record.error();
    if (const auto removed = monitors.site().removePlugIn(record.value().id); !removed)
        return environment(removed.error());
    context.output.print("Removed \"{}\" from {}.\n", options.title, monitors.site().path());
    tellRunner(monitors.site(), context);
    return std::nullopt;
}

std::optional<Refusal> test(MonitorSite& monitors, const MonitorOptions& options, CommandContext& context) {
    const auto record = monitors.titled(options.title);
    if (!record) return record.error();
    const auto monitor = monitors.open(record.value());
    if (!monitor) return environment(monitor.error());
    return testMonitor(*monitor.value(), options.title, context);
}

void addSettings(CLI::App& command, MonitorOptions& options) {
    command.add_option("--condition", options.condition, "The condition, as one argument")
        ->type_name("CONDITION");
    command.add_option("--retrigger", options.retrigger, "Minutes to wait after a fire")
        ->type_name("MINUTES")
        ->check(minutesCheck());
    command
        .add_option("--on-change", options.onChange,
                    "true: judge only readings that are newer and have changed")
        ->type_name("BOOL");
    command.add_option("--active", options.active, "The monitor judges; false: it rests")
        ->type_name("BOOL")
        ->expected(0, 1)
        ->default_str("true");
    command.add_option("--action", options.actions, "A row, as NAME=VALUE; again for each row")
        ->type_name("ROW")
        ->take_all()
        ->expected(1);
}

}  // namespace

void addMonitorCommand(CLI::App& app, CommandContext& context) {
    auto options = std::make_shared<MonitorOptions>();
    auto* monitor = app.add_subcommand("monitor", "Make, show and change monitors");
    monitor->require_subcommand(1);
    monitor->footer(
        "Examples:\n"
        "  vigil monitor create Frost --station Home --active --condition 'outsideTemp.unitValue < 0' "
        "--action 'Run script=notify.sh "
        "frost'\n"
        "  vigil monitor edit Frost --retrigger 60 --action 'Speak Text=Frost' --action 'Play "
        "Sound=bell.wav'\n"
        "  vigil monitor list --json");
    const auto add = [&](const char* name, const char* purpose, Access access, Run run) {
        auto* command = monitor->add_subcommand(name, purpose);
        addSiteOption(*command, options->site);
        command->callback([options, access, run, &context] { onSite(*options, access, context, run); });
        return command;
    };
    const auto titled = [&](CLI::App* command) {
        command->add_option("TITLE", options->title, "The monitor's title")->required();
        return command;
    };
    const auto json = [&](CLI::App* command) {
        command->add_flag("--json", options->json, "One JSON object a monitor");
        return command;
    };
    json(add("list", "All monitors of a site", Access::Read, list));
    json(titled(add("show", "One monitor", Access::Read, show)));
    auto* creating = json(add("create", "A new monitor", Access::Edit, create));
    creating->add_option_function<std::string>(
        "TITLE",
        [options](const std::string& title) {
            options->title = title;
            options->titled = true;
        },
        "Its title (Vigil, Vigil 2, ...)");
    creating
        ->add_option("--station", options->station,
                     "The station that it watches; not needed where there is one")
        ->type_name("NAME");
    addSettings(*creating, *options);
    auto* editing =
        json(titled(add("edit", "Change a monitor; what is not named stays", Access::Edit, edit)));
    editing->add_option("--title", options->newTitle, "A new title")->type_name("TITLE");
    addSettings(*editing, *options);
    titled(add("remove", "Remove a monitor", Access::Edit, remove));
    titled(add("test", "Play and speak what a monitor would", Access::Read, test));
}

}  // namespace vigil
