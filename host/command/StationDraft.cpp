#include "host/command/StationDraft.hpp"

#include <algorithm>
#include <set>

#include "host/feeds/FeedUrl.hpp"
#include "host/readings/KeyNames.hpp"
#include "host/readings/KnownReadings.hpp"
#include "host/readings/RollingChoice.hpp"
#include "host/readings/StationReadings.hpp"
#include "host/readings/Units.hpp"

namespace vigil {
namespace {

Result<Done> takeUnit(const std::string& text, StationRecord& station) {
    const std::size_t equals = text.find('=');
    const std::string key = text.substr(0, equals);
    if (equals == std::string::npos || key.empty() || keyFromName(key) != key)
        return Error{"--unit \"" + text + "\": expected KEY=UNIT, as in windSpeed=kn"};
    std::erase_if(station.units, [&](const auto& one) { return one.first == key; });
    const std::string name = text.substr(equals + 1);
    if (name.empty()) return Done{};
    const auto unit = unitFromText(name);
    if (!unit) return Error{"--unit \"" + text + "\": no unit is called \"" + name + "\""};
    const KnownReading* known = knownReading(key);
    if (known && !convertible(known->held, *unit))
        return Error{"--unit \"" + text + "\": " + std::string(known->name) + " is measured in " +
                     (known->held == Unit::None ? "no unit" : std::string(unitText(known->held))) +
                     ", which does not convert into " + std::string(unitText(*unit))};
    station.units.emplace_back(key, unitText(*unit));
    return Done{};
}

Result<Done> takeRolling(const std::vector<std::string>& texts, StationRecord& station) {
    if (texts.size() > StationReadings::kMostRollingChoices)
        return Error{"a station takes at most " + std::to_string(StationReadings::kMostRollingChoices) +
                     " rolling readings"};
    station.rolling.clear();
    std::set<std::string> keys;
    for (const std::string& text : texts) {
        const auto choice = RollingChoice::parse(text);
        if (!choice) return Error{"--rolling \"" + text + "\": " + choice.error().message};
        if (!keys.insert(choice.value().key()).second)
            return Error{"--rolling \"" + text + "\": " + choice.value().key() + " is there already"};
        station.rolling.push_back(choice.value().text());
    }
    return Done{};
}

}  // namespace

Result<Done> apply(const StationDraft& draft, StationRecord& station) {
    StationRecord changed = station;
    if (draft.name) changed.name = *draft.name;
    if (draft.feed && !draft.feed->empty())
        if (const auto feed = FeedUrl::parse(*draft.feed); !feed) return feed.error();
    if (draft.feed) changed.feed = *draft.feed;
    if (draft.units) changed.usUnits = *draft.units == "us";
    for (const std::string& unit : draft.unit)
        if (auto taken = takeUnit(unit, changed); !taken) return taken;
    if (!draft.rolling.empty() || draft.noRolling)
        if (auto taken = takeRolling(draft.rolling, changed); !taken) return taken;
    station = std::move(changed);
    return Done{};
}

}  // namespace vigil
