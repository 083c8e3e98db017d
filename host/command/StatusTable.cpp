#include "host/command/StatusTable.hpp"

#include <algorithm>
#include <vector>

#include <fmt/format.h>

#include "host/command/Printable.hpp"
#include "host/command/TimeText.hpp"
#include "host/services/SystemClock.hpp"

namespace vigil {
namespace {

constexpr const char* kGood = "\x1b[32m";
constexpr const char* kBad = "\x1b[31m";
constexpr const char* kQuiet = "\x1b[2m";
constexpr const char* kPlain = "\x1b[0m";
/// Data older than this is pointed out.
constexpr double kStaleSeconds = 600;

struct Cell {
    std::string text;
    const char* colour = nullptr;
};
using Row = std::vector<Cell>;

/// Characters, not bytes; wide ones count as one.
std::size_t width(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string table(std::vector<Row> rows, const std::string& indent, bool colour) {
    for (Row& row : rows)
        for (Cell& cell : row)
            cell.text = printable(cell.text);
    std::vector<std::size_t> widths;
    for (const Row& row : rows)
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (i == widths.size()) widths.push_back(0);
            widths[i] = std::max(widths[i], width(row[i].text));
        }
    std::string text;
    for (const Row& row : rows) {
        text += indent;
        for (std::size_t i = 0; i < row.size(); ++i) {
            const bool painted = colour && row[i].colour;
            text += painted ? row[i].colour + row[i].text + kPlain : row[i].text;
            const bool last = std::all_of(row.begin() + static_cast<std::ptrdiff_t>(i) + 1, row.end(),
                                          [](const Cell& cell) { return cell.text.empty(); });
            if (last) break;
            text.append(widths[i] - width(row[i].text) + 2, ' ');
        }
        text += '\n';
    }
    return text;
}

std::string clockText(Date date, Date now) {
    const LocalTime time = systemLocalTime(date);
    const LocalTime today = systemLocalTime(now);
    const std::string clock = fmt::format("{:02}:{:02}:{:02}", time.hour, time.minute, time.second);
    const bool isToday = time.year == today.year && time.month == today.month && time.day == today.day;
    return isToday ? clock : fmt::format("{}-{:02}-{:02} {}", time.year, time.month, time.day, clock);
}

const char* mark(const MonitorStatus& monitor) {
    if (monitor.state == "watching") return "✓";
    if (monitor.state == "waiting") return "…";
    if (monitor.state == "not active") return "–";
    return "!";
}

Row rowOf(const MonitorStatus& monitor, Date now) {
    if (monitor.state == "not running") return {{"–", kQuiet}, {monitor.title}};
    const bool bad = monitor.state == "failed" || monitor.state == "cannot be judged";
    const char* const colour = bad ? kBad : monitor.state == "not active" ? kQuiet : kGood;
    std::string words = monitor.words;
    if (monitor.waitsUntil) words = "waiting until " + clockText(*monitor.waitsUntil, now);
    Row row{{mark(monitor), colour}, {monitor.title}, {words, colour}};
    row.push_back({monitor.lastFire ? "fired " + clockText(*monitor.lastFire, now) : "", nullptr});
    std::string action = monitor.lastAction;
    if (!action.empty()) action += (monitor.lastFailed ? ": ! " : ": ") + monitor.lastResult;
    row.push_back({action, monitor.lastFailed ? kBad : nullptr});
    return row;
}

std::string dataText(const StationStatus& station, Date now) {
    if (!station.lastData) return "no data yet";
    return "data " + ageText(now.secondsSince(*station.lastData)) + " old";
}

Row rowOf(const StationStatus& station, Date now) {
    if (station.feedState == "not running") return {{station.name}, {station.feed, kQuiet}};
    const bool live = station.feedState == "live" || station.feedState == "starting";
    const bool stale = station.lastData && now.secondsSince(*station.lastData) > kStaleSeconds;
    std::string feed = station.feedState == "none" ? "no feed" : station.feedState;
    if (!station.feedWords.empty()) feed += ": " + station.feedWords;
    Row row{{station.name}, {(live ? "" : "! ") + feed, live ? kGood : kBad}};
    row.push_back({(stale ? "! " : "") + dataText(station, now), stale ? kBad : nullptr});
    row.push_back({fmt::format("{} notifications", station.notifications), kQuiet});
    std::uint64_t dropped = 0;
    for (const auto& [why, count] : station.drops)
        dropped += count;
    if (dropped > 0) row.push_back({fmt::format("{} left out", dropped), kQuiet});
    return row;
}

}  // namespace

std::string statusTable(const SiteStatus& status, bool colour) {
    std::string text;
    if (status.pid != 0)
        text += fmt::format("{}, run by process {} for {}\n", status.site, status.pid,
                            ageText(status.now.secondsSince(status.since)));
    else
        text += fmt::format("{}, not running: start it with `vigil run`\n", status.site);
    for (const std::string& problem : status.problems)
        text += fmt::format("{}! {}{}\n", colour ? kBad : "", printable(problem), colour ? kPlain : "");
    if (status.stations.empty()) text += "\nNo stations yet: vigil station create NAME --feed simulated:\n";
    for (const StationStatus& station : status.stations) {
        text += '\n' + table({rowOf(station, status.now)}, "", colour);
        std::vector<Row> rows;
        for (const MonitorStatus& monitor : station.monitors)
            rows.push_back(rowOf(monitor, status.now));
        text += rows.empty() ? "  no monitors\n" : table(rows, "  ", colour);
    }
    return text;
}

}  // namespace vigil
