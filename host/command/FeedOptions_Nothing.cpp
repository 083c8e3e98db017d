#include <set>

#include "host/command/FeedOptions.hpp"

// What to say where nothing came of recorded readings.

namespace vigil {
namespace {

/// Those of a file, read once more without a choice; nothing of what can be read only once.
std::set<std::string> stationsIn(const FeedOptions& options) {
    std::set<std::string> names;
    if (options.path == "-") return names;
    CsvOptions csv = options.csv;
    csv.station.reset();
    csv.orderWindow = 0;
    const auto source = openRecorded(options.path, csv, {.orderWindow = 0}, {});
    if (!source) return names;
    for (;;) {
        const auto next = source.value()->next();
        if (!next || !next.value()) return names;
        names.insert(next.value()->station);
    }
}

std::string listed(const std::set<std::string>& names) {
    constexpr std::size_t kMost = 20;
    std::string text;
    std::size_t count = 0;
    for (const std::string& name : names) {
        text += (count == 0 ? "\"" : ", \"") + name + "\"";
        if (++count == kMost && names.size() > kMost) return text + ", …";
    }
    return text;
}

}  // namespace

void tellNothingCame(const FeedOptions& options, const FeedReport& report, CommandContext& context) {
    const std::string file = options.path == "-" ? "standard input" : options.path;
    const auto& station = options.csv.station ? options.csv.station : options.lines.station;
    if (report.problems() > 0) {
        context.status = ExitStatus::BadInput;
    } else if (station) {
        const auto names = stationsIn(options);
        context.output.error("there is no notification of a station \"" + *station + "\" in " + file +
                             (names.empty() ? "" : "; there are those of " + listed(names)));
        context.status = ExitStatus::BadInput;
    } else {
        context.output.error(file + " holds no notification");
        context.status = ExitStatus::No;
    }
}

}  // namespace vigil
