#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "host/command/Commands.hpp"
#include "host/command/ConditionAnswer.hpp"
#include "host/command/MonitorLines.hpp"
#include "host/command/OpenMonitor.hpp"
#include "host/kit/MonitorModule.hpp"

namespace vigil {
namespace {

struct MonitorOptions {
    std::string site = MonitorStore::defaultFile();
    std::string title;
    std::string station = "Station";
    std::optional<std::string> newTitle, condition;
    std::optional<double> retrigger;
    std::optional<bool> onChange, active;
    std::vector<std::string> actions;
    bool json = false;
};

/// What went wrong, and how the program is to end.
struct Refusal {
    ExitStatus status;
    std::string text;
};

void tell(CommandContext& context, const Refusal& refusal) {
    context.output.error(refusal.text);
    context.status = refusal.status;
}

Refusal badInput(std::string text) {
    return {ExitStatus::BadInput, std::move(text)};
}

Refusal environment(const Error& error) {
    return {ExitStatus::Environment, error.message};
}

/// Takes over what was said of a monitor. Nothing where all of it was.
std::optional<Refusal> apply(const MonitorOptions& options, OpenMonitor& monitor, CommandContext& context) {
    if (options.condition) {
        const auto condition = conditionFromUser(*options.condition, context);
        if (!condition) return badInput("the monitor was left as it was");
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

/// A command on a site whose file was read, with the module loaded.
template <class Run>
void onSite(const MonitorOptions& options, CommandContext& context, Run run) {
    if (const auto loaded = loadMonitorModule(context.programFolder); !loaded)
        return tell(context, environment(loaded.error()));
    auto store = MonitorStore::open(options.site);
    if (!store) return tell(context, environment(store.error()));
    if (const std::optional<Refusal> refusal = run(store.value())) tell(context, *refusal);
}

std::string helperOf(const CommandContext& context) {
    return context.programFolder + "/vigil-helper";
}

std::optional<Refusal> save(MonitorStore& store, const std::string& title, const OpenMonitor& monitor) {
    auto stored = monitor.stored();
    if (!stored) return environment(stored.error());
    store.put(title, std::move(stored).value());
    if (const auto saved = store.save(); !saved) return environment(saved.error());
    return std::nullopt;
}

Refusal unknown(const MonitorStore& store, const std::string& title) {
    std::string titles;
    for (const StoredMonitor& one : store.all())
        titles += (titles.empty() ? "" : ", ") + one.title;
    return badInput("no monitor is called \"" + title + "\" in " + store.file() +
                    (titles.empty() ? "; it has none" : "; there are: " + titles));
}

std::optional<Refusal> showOne(const StoredMonitor& stored, bool json, CommandContext& context) {
    const auto monitor = OpenMonitor::open(stored, helperOf(context));
    if (!monitor) return environment(monitor.error());
    context.output.write(json ? monitorJson(stored, *monitor.value())
                              : monitorLines(stored, *monitor.value()));
    return std::nullopt;
}

std::optional<Refusal> list(const MonitorStore& store, bool json, CommandContext& context) {
    for (const StoredMonitor& one : store.all())
        if (auto refusal = showOne(one, json, context)) return refusal;
    if (store.all().empty() && !json)
        context.output.print("No monitor yet in {}; `vigil monitor create --help` shows how to make one.\n",
                             store.file());
    return std::nullopt;
}

std::optional<Refusal> create(MonitorStore& store, const MonitorOptions& options, CommandContext& context) {
    if (options.title.empty()) return badInput("a monitor needs a title");
    if (store.find(options.title))
        return badInput("a monitor called \"" + options.title +
                        "\" is there already; `vigil monitor edit` changes it");
    const auto monitor = OpenMonitor::make(options.station, options.title, helperOf(context));
    if (!monitor) return environment(monitor.error());
    if (auto refusal = apply(options, *monitor.value(), context)) return refusal;
    if (auto refusal = save(store, options.title, *monitor.value())) return refusal;
    return showOne(*store.find(options.title), options.json, context);
}

std::optional<Refusal> edit(MonitorStore& store, const MonitorOptions& options, CommandContext& context) {
    const StoredMonitor* stored = store.find(options.title);
    if (!stored) return unknown(store, options.title);
    const std::string title = options.newTitle.value_or(options.title);
    if (title.empty() || (title != options.title && store.find(title)))
        return badInput("the title \"" + title + "\" cannot be used");
    const auto monitor = OpenMonitor::open(*stored, helperOf(context));
    if (!monitor) return environment(monitor.error());
    monitor.value()->setTitle(title);
    if (auto refusal = apply(options, *monitor.value(), context)) return refusal;
    if (auto refusal = save(store, options.title, *monitor.value())) return refusal;
    return showOne(*store.find(title), options.json, context);
}

std::optional<Refusal> remove(MonitorStore& store, const MonitorOptions& options, CommandContext& context) {
    if (!store.remove(options.title)) return unknown(store, options.title);
    if (const auto saved = store.save(); !saved) return environment(saved.error());
    context.output.print("Removed \"{}\" from {}.\n", options.title, store.file());
    return std::nullopt;
}

std::optional<Refusal> test(const MonitorStore& store, const MonitorOptions& options,
                            CommandContext& context) {
    const StoredMonitor* stored = store.find(options.title);
    if (!stored) return unknown(store, options.title);
    const auto monitor = OpenMonitor::open(*stored, helperOf(context));
    if (!monitor) return environment(monitor.error());
    monitor.value()->perform("testSound:");
    context.output.print("Tested \"{}\": rows that play or speak were run, scripts and messages were not.\n",
                         options.title);
    return std::nullopt;
}

void addSettings(CLI::App& command, MonitorOptions& options) {
    command.add_option("--condition", options.condition, "The condition, as one argument")
        ->type_name("CONDITION");
    command.add_option("--retrigger", options.retrigger, "Minutes to wait after a fire")
        ->type_name("MINUTES")
        ->check(CLI::Range(0.0, 1e9));
    command
        .add_option("--on-change", options.onChange,
                    "true: judge only readings that are newer and have changed")
        ->type_name("BOOL");
    command.add_option("--active", options.active, "true: the monitor judges; false: it rests")
        ->type_name("BOOL");
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
        "  vigil monitor create Frost --condition 'outsideTemp.unitValue < 0' --action 'Run script=notify.sh "
        "frost'\n"
        "  vigil monitor edit Frost --retrigger 60 --action 'Speak Text=Frost' --action 'Play "
        "Sound=bell.wav'\n"
        "  vigil monitor list --json");
    const auto add = [&](const char* name, const char* purpose, auto run) {
        auto* command = monitor->add_subcommand(name, purpose);
        command->add_option("--site", options->site, "The file of the monitors (" + options->site + ")")
            ->type_name("FILE");
        command->callback([options, run, &context] {
            onSite(*options, context, [&](MonitorStore& store) { return run(store, *options, context); });
        });
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
    json(add("list", "All monitors of a site",
             [](auto& store, auto& o, auto& c) { return list(store, o.json, c); }));
    json(titled(add("show", "One monitor", [](auto& store, auto& o, auto& c) {
        const StoredMonitor* stored = store.find(o.title);
        return stored ? showOne(*stored, o.json, c) : unknown(store, o.title);
    })));
    auto* creating = json(titled(add("create", "A new monitor", create)));
    creating->add_option("--station", options->station, "The station that it watches (Station)")
        ->type_name("NAME");
    addSettings(*creating, *options);
    auto* editing = json(titled(add("edit", "Change a monitor; what is not named stays", edit)));
    editing->add_option("--title", options->newTitle, "A new title")->type_name("TITLE");
    addSettings(*editing, *options);
    titled(add("remove", "Remove a monitor", remove));
    titled(add("test", "Play and speak what a monitor would", test));
}

}  // namespace vigil
