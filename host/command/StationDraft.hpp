#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/site/SiteRecords.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// What a command line says of a station; what it does not name stays as it is.
struct StationDraft {
    std::optional<std::string> name, feed, units;
    std::vector<std::string> unit;     ///< "windSpeed=kn"; "windSpeed=" takes one back
    std::vector<std::string> rolling;  ///< all of them, in place of those from before
    bool noRolling = false;
};

/// Takes it over. An error says what is not understood and what is offered, and leaves the record alone.
Result<Done> apply(const StationDraft& draft, StationRecord& station);

/// For people: a station with its feed (secrets masked), units and rolling readings, a line each.
std::string stationLines(const StationRecord& station, std::size_t monitors);
/// The same as one JSON object and a line's end.
std::string stationJson(const StationRecord& station, std::size_t monitors);

}  // namespace vigil
