#include <cstdio>
#include <memory>
#include <string>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "host/command/Commands.hpp"
#include "host/command/HistoryChoice.hpp"
#include "host/command/HistoryExport.hpp"
#include "host/command/JsonText.hpp"
#include "host/command/ReadingLines.hpp"
#include "host/command/TimeText.hpp"

namespace vigil {
namespace {

struct HistoryCommand {
    HistoryChoice choice;
    std::string station;
    std::string file;
    bool json = false;
};

std::string sizeText(std::uint64_t bytes) {
    constexpr double kKilo = 1000, kMega = 1e6, kGiga = 1e9;
    const auto size = static_cast<double>(bytes);
    if (size >= kGiga) return fmt::format("{:.1f} GB", size / kGiga);
    if (size >= kMega) return fmt::format("{:.1f} MB", size / kMega);
    if (size >= kKilo) return fmt::format("{:.1f} kB", size / kKilo);
    return fmt::format("{} B", bytes);
}

std::string stationJson(const OpenHistory& history, const StoredStation& station, std::uint64_t lost) {
    std::string line = "{\"station\":";
    appendJsonText(line, history.stationName(station.id));
    line += fmt::format(",\"notifications\":{}", station.notifications);
    line += station.first ? ",\"first\":\"" + exactIsoText(*station.first) + "\"" : ",\"first\":null";
    line += station.last ? ",\"last\":\"" + exactIsoText(*station.last) + "\"" : ",\"last\":null";
    return line + fmt::format(",\"bytes\":{},\"lost\":{}}}\n", station.bytes, lost);
}

std::string stationLine(const OpenHistory& history, const StoredStation& station, std::uint64_t lost) {
    std::string line =
        fmt::format("{:<24} {:>12} notification{} {:>9}", history.stationName(station.id),
                    station.notifications, station.notifications == 1 ? " " : "s", sizeText(station.bytes));
    if (station.first && station.last)
        line += fmt::format("  {} to {}", timeForPeople(*station.first), timeForPeople(*station.last));
    if (lost > 0) line += fmt::format("  ({} lost)", lost);
    return line + "\n";
}

void listHistory(const HistoryCommand& command, CommandContext& context) {
    const auto history = openHistory(command.choice, context);
    if (!history) return;
    bool any = false;
    for (const StoredStation& station : history->stations) {
        if (station.notifications == 0 && station.name.empty()) continue;  // was removed
        const auto losses = history->reader->losses(station.id);
        std::uint64_t lost = 0;
        for (const StoredLoss& loss : losses ? losses.value() : std::vector<StoredLoss>())
            lost += loss.count;
        if (station.notifications == 0 && lost == 0) continue;  // new, or removed: nothing is kept of it
        any = true;
        context.output.write(command.json ? stationJson(*history, station, lost)
                                          : stationLine(*history, station, lost));
    }
    if (!command.json)
        context.output.print("{} in {}\n", sizeText(history->reader->bytes()), history->reader->file());
    if (!any) context.status = ExitStatus::No;
}

void history(const HistoryCommand& command, CommandContext& context) {
    const bool asksForReadings =
        !command.station.empty() || !command.choice.since.empty() || !command.choice.until.empty();
    if (!asksForReadings) return listHistory(command, context);
    const auto open = openHistory(command.choice, context);
    const auto* station = open ? chooseStation(*open, command.station, context) : nullptr;
    if (!station) return;
    writeReadings(
        *open, *station, [&context](std::string_view text) { context.output.write(text); }, context);
}

void exportTo(const HistoryCommand& command, CommandContext& context) {
    const auto open = openHistory(command.choice, context);
    const auto* station = open ? chooseStation(*open, command.station, context) : nullptr;
    if (station) exportReadings(*open, *station, command.file, context);
}

}  // namespace

void addHistoryCommand(CLI::App& app, CommandContext& context) {
    auto options = std::make_shared<HistoryCommand>();
    auto* command = app.add_subcommand("history", "What is kept of a site's readings");
    command->fallthrough(false);
    addHistoryOptions(*command, options->choice);
    command->add_option("--station", options->station, "Print this station's readings as JSON lines")
        ->type_name("NAME");
    command->add_flag("--json", options->json, "The list as one JSON object a line");
    command->footer(
        "Without a station or a time it lists the stations with what is kept of each. With one it prints\n"
        "readings as JSON lines, which \"vigil replay\" reads.\n"
        "The status is 0, 1 when nothing was found, 2 for a name or time that is none, 3 without a history.\n"
        "Examples:\n"
        "  vigil history\n"
        "  vigil history --station Roof --since \"2 days ago\" > roof.jsonl\n"
        "  vigil history export roof.csv --station Roof --since 2026-11-01 --until 2026-12-01");

    auto* exporting = command->add_subcommand("export", "Write a station's readings into a file");
    auto exported = std::make_shared<HistoryCommand>();
    exporting->add_option("FILE", exported->file, "A name that ends with .csv, or with .jsonl")->required();
    exporting->add_option("--station", exported->station, "Which station, where there are several")
        ->type_name("NAME");
    addHistoryOptions(*exporting, exported->choice);
    exporting->footer(
        "JSON lines keep all of a reading; CSV keeps a number in the user's unit, a text or a date.\n"
        "Example:\n  vigil history export roof.csv --station Roof --since 2026-11-01");
    exporting->callback([exported, &context] { exportTo(*exported, context); });
    command->callback([options, command, &context] {
        if (command->get_subcommands().empty()) history(*options, context);
    });
}

}  // namespace vigil
