#include "host/command/HistoryExport.hpp"

#include <filesystem>
#include <fstream>
#include <set>
#include <system_error>
#include <vector>

#include <fmt/format.h>

#include "host/command/ReadingLines.hpp"

namespace vigil {
namespace {

/// How many there were; nothing where the history cannot be read at all.
std::optional<std::size_t> forEach(const OpenHistory& history, const StoredStation& station,
                                   const std::function<void(const StoredNotification&)>& see,
                                   CommandContext& context) {
    const auto source = history.reader->source(station.id, history.range);
    if (!source) {
        context.output.error(source.error().message);
        context.status = ExitStatus::Environment;
        return std::nullopt;
    }
    for (std::size_t count = 0;;) {
        const auto next = source.value()->next();
        if (!next) {
            context.output.error(next.error().message);
            context.status = ExitStatus::Environment;
            continue;
        }
        if (!next.value()) return count;
        see(*next.value());
        ++count;
    }
}

/// Every reading that comes, in the unit in which it first comes and in the order in which they first come.
std::vector<ReadingColumn> columnsOf(const OpenHistory& history, const StoredStation& station,
                                     CommandContext& context) {
    std::vector<ReadingColumn> columns;
    std::set<std::string, std::less<>> known;
    forEach(
        history, station,
        [&](const StoredNotification& notification) {
            for (const AgentProperty& reading : notification.readings->entries())
                if (known.insert(reading.propertyName()).second)
                    columns.push_back(ReadingColumn::of(reading));
        },
        context);
    return columns;
}

void refuse(CommandContext& context, ExitStatus status, const std::string& why) {
    context.output.error(why);
    context.status = status;
}

}  // namespace

void writeReadings(const OpenHistory& history, const StoredStation& station,
                   const std::function<void(std::string_view)>& write, CommandContext& context) {
    const std::string name = history.stationName(station.id);
    std::string line;
    const auto count = forEach(
        history, station,
        [&](const StoredNotification& notification) {
            line.clear();
            appendReadingsLine(line, name, notification.started, *notification.readings);
            write(line);
        },
        context);
    if (!count || *count > 0 || context.status != ExitStatus::Yes) return;
    context.output.error("no readings of " + name + " are stored of that time");
    context.status = ExitStatus::No;
}

void exportReadings(const OpenHistory& history, const StoredStation& station, const std::string& file,
                    CommandContext& context) {
    const bool csv = file.ends_with(".csv");
    if (!csv && !file.ends_with(".jsonl"))
        return refuse(context, ExitStatus::BadInput,
                      file + ": expected a name that ends with .csv or .jsonl");
    const std::string unfinished = file + ".unfinished";
    std::ofstream out(unfinished, std::ios::binary | std::ios::trunc);
    const auto columns = csv ? columnsOf(history, station, context) : std::vector<ReadingColumn>();
    const std::string name = history.stationName(station.id);
    std::string text;
    if (csv) appendReadingsHeader(text, columns);
    const auto count = forEach(
        history, station,
        [&](const StoredNotification& notification) {
            if (csv)
                appendReadingsRow(text, notification.started, columns, *notification.readings);
            else
                appendReadingsLine(text, name, notification.started, *notification.readings);
            out << text;
            text.clear();
        },
        context);
    out << text;
    out.close();
    std::error_code failed;
    if (out && count) std::filesystem::rename(unfinished, file, failed);
    if (!out || failed) return refuse(context, ExitStatus::Environment, "cannot write " + file);
    if (!count) return;
    context.output.print("{} notification{} of {} in {}\n", *count, *count == 1 ? "" : "s", name, file);
    if (*count == 0 && context.status == ExitStatus::Yes) context.status = ExitStatus::No;
}

}  // namespace vigil
