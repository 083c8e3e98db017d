#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "host/command/Commands.hpp"
#include "host/command/HistoryChoice.hpp"
#include "host/command/PlotCollect.hpp"
#include "host/command/ReplayLog.hpp"
#include "host/kit/InterfaceFile.hpp"
#include "host/kit/MonitorModule.hpp"
#include "host/kit/StandardLog.hpp"

namespace vigil {
namespace {

struct PlotOptions {
    HistoryChoice choice;
    std::string monitor;
    std::string station;
    std::vector<std::string> keys;
    std::string file;
};

void refuse(CommandContext& context, ExitStatus status, const std::string& why) {
    context.output.error(why);
    context.status = status;
}

void write(const Result<Plot>& plot, const std::string& file, CommandContext& context) {
    if (!plot) return refuse(context, ExitStatus::No, plot.error().message);
    for (const std::string& key : plot.value().absent)
        context.output.error("no reading \"" + key + "\" is stored of that time; it is not drawn");
    const std::string svg = plotSvg(plot.value());
    if (file == "-") return context.output.write(svg);
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out << svg;
    out.close();
    if (!out) return refuse(context, ExitStatus::Environment, "cannot write " + file);
}

void plotStation(const PlotOptions& options, CommandContext& context) {
    const auto history = openHistory(options.choice, context);
    const auto* station = history ? chooseStation(*history, options.station, context) : nullptr;
    if (station) write(plotOfStation(*history, *station, options.keys), options.file, context);
}

void plotMonitor(const PlotOptions& options, CommandContext& context) {
    const auto history = openHistory(options.choice, context);
    const auto* monitor = history ? chooseMonitor(*history, options.monitor, context) : nullptr;
    if (!monitor) return;
    if (const auto loaded = loadMonitorModule(context.programFolder); !loaded)
        return refuse(context, ExitStatus::Environment, loaded.error().message);
    InterfaceFile interfaceFiles;
    const Date now;
    ReplayLog log(context.output, kLogProblem, now);
    MonitorReplay replay(*history->reader, *monitor, history->stationName(monitor->station), log,
                         interfaceFiles, {});
    write(plotOfMonitor(*history, *monitor, replay), options.file, context);
}

}  // namespace

void addPlotCommand(CLI::App& app, CommandContext& context) {
    auto options = std::make_shared<PlotOptions>();
    auto* command = app.add_subcommand("plot", "Draw stored readings, and what a monitor made of them");
    auto* monitor = command->add_option("--monitor", options->monitor,
                                        "The readings that its condition names, its fires and its waits");
    monitor->type_name("TITLE");
    auto* station = command->add_option("--station", options->station, "A station, with --keys")
                        ->type_name("NAME")
                        ->excludes(monitor);
    auto* keys = command->add_option("--keys", options->keys, "Which readings, with commas between them")
                     ->type_name("KEY,KEY")
                     ->delimiter(',')
                     ->excludes(monitor);
    station->needs(keys);
    command->add_option("-o,--output", options->file, "The drawing, SVG; - for standard output")
        ->type_name("FILE")
        ->required();
    addHistoryOptions(*command, options->choice);
    command->footer(
        "Times of day are those of this machine's zone. Readings of one unit share a panel.\n"
        "The status is 0, 1 when nothing is stored of that time, 2 for a name or time that is none, 3 "
        "without\n"
        "a history.\n"
        "Examples:\n"
        "  vigil plot --monitor Frost --since \"3 days ago\" -o frost.svg\n"
        "  vigil plot --station Roof --keys outsideTemp,dewPoint --since 2026-11-01 -o november.svg");
    command->callback([options, keys, &context] {
        const std::string kind = std::filesystem::path(options->file).extension().string();
        if (!kind.empty() && kind != ".svg")
            throw CLI::ValidationError("--output", "the drawing is SVG; expected a name that ends with .svg");
        if (keys->count() > 0)
            plotStation(*options, context);
        else
            plotMonitor(*options, context);
    });
}

}  // namespace vigil
