#include "host/command/HistoryChoice.hpp"

#include <utility>

#include <fmt/format.h>

#include "host/command/SiteChoice.hpp"
#include "host/command/TimeText.hpp"
#include "host/services/SystemClock.hpp"
#include "host/site/SiteFile.hpp"

namespace vigil {
namespace {

constexpr std::size_t kMostNamed = 20;

bool readTime(const char* option, const std::string& text, std::optional<Date>& to, CommandContext& context) {
    if (text.empty()) return true;
    const auto date = timeFromUser(text, systemNow());
    if (date) return to = date.value(), true;
    context.output.error(fmt::format("{}: {}", option, date.error().message));
    context.status = ExitStatus::BadInput;
    return false;
}

template <class T>
bool tell(const Result<T>& failed, CommandContext& context) {
    context.output.error(failed.error().message);
    context.status = ExitStatus::Environment;
    return false;
}

/// The site knows the names of stations that the history was not told.
void nameFromSite(const std::string& file, std::vector<StoredStation>& stations) {
    const auto site = SiteFile::open(file, Access::Read);
    if (!site) return;
    const auto known = site.value()->stations();
    if (!known) return;
    for (StoredStation& station : stations)
        for (const StationRecord& record : known.value())
            if (station.name.empty() && record.id == station.id) station.name = record.name;
}

/// Of `all` the one that `nameOf` gives that name.
template <class T, class NameOf>
const T* choose(const std::vector<T>& all, const std::string& name, const char* what, NameOf nameOf,
                CommandContext& context) {
    if (name.empty() && all.size() == 1) return &all.front();
    std::string names;
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (!name.empty() && nameOf(all[i]) == name) return &all[i];
        if (i < kMostNamed) names += (i ? ", \"" : "\"") + nameOf(all[i]) + "\"";
        if (i == kMostNamed) names += ", …";
    }
    context.output.error(name.empty() ? fmt::format("say which {} you mean", what)
                                      : fmt::format("the history knows no {} \"{}\"", what, name));
    context.output.errorText(all.empty() ? fmt::format("It knows no {} at all.\n", what)
                                         : fmt::format("It knows {}.\n", names));
    context.status = ExitStatus::BadInput;
    return nullptr;
}

}  // namespace

void addHistoryOptions(CLI::App& command, HistoryChoice& choice) {
    addSiteOption(command, choice.site);
    command
        .add_option("--since", choice.since,
                    "From then on: 2026-11-20, 2026-11-20T10:34Z, \"3 days ago\", -3h; local without a zone")
        ->type_name("TIME");
    command.add_option("--until", choice.until, "Before then, in the same forms")->type_name("TIME");
}

std::string OpenHistory::stationName(RecordId station) const {
    for (const StoredStation& known : stations)
        if (known.id == station && !known.name.empty()) return known.name;
    return fmt::format("station {}", station);
}

std::optional<OpenHistory> openHistory(const HistoryChoice& choice, CommandContext& context) {
    OpenHistory history;
    if (!readTime("--since", choice.since, history.range.since, context) ||
        !readTime("--until", choice.until, history.range.until, context))
        return std::nullopt;
    if (history.range.since && history.range.until && *history.range.since >= *history.range.until) {
        context.output.error(fmt::format("--since, {}, is not before --until, {}",
                                         timeForPeople(*history.range.since),
                                         timeForPeople(*history.range.until)));
        context.status = ExitStatus::BadInput;
        return std::nullopt;
    }
    const auto path = siteOf(choice.site, context);
    if (!path) return std::nullopt;
    const std::string& file = *path;
    auto reader = HistoryReader::open(file);
    if (!reader) return tell(reader, context), std::nullopt;
    history.reader = std::move(reader).value();
    auto stations = history.reader->stations();
    if (!stations) return tell(stations, context), std::nullopt;
    history.stations = std::move(stations).value();
    nameFromSite(file, history.stations);
    auto monitors = history.reader->plugIns();
    if (!monitors) return tell(monitors, context), std::nullopt;
    history.monitors = std::move(monitors).value();
    return history;
}

const StoredStation* chooseStation(const OpenHistory& history, const std::string& name,
                                   CommandContext& context) {
    return choose(
        history.stations, name, "station",
        [&history](const StoredStation& station) { return history.stationName(station.id); }, context);
}

const StoredPlugIn* chooseMonitor(const OpenHistory& history, const std::string& title,
                                  CommandContext& context) {
    return choose(
        history.monitors, title, "monitor", [](const StoredPlugIn& monitor) { return monitor.title; },
        context);
}

}  // namespace vigil
