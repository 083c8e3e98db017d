#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <SQLiteCpp/SQLiteCpp.h>

#include "host/site/SiteRecords.hpp"
#include "platform/Result.hpp"

namespace vigil {

// Records and the rows that hold them. Times stand in the tables as they are in `Date`, to the last bit.

/// "script", "started": how they stand in the tables and wherever they are listed.
const char* textOf(EffectRecord::Kind kind);
const char* textOf(EffectRecord::State state);
/// Nothing for another text.
std::optional<EffectRecord::Kind> effectKind(std::string_view text);
std::optional<EffectRecord::State> effectState(std::string_view text);

/// What a station's lists are kept as: [["key","unit"],…] and ["windSpeed mean 10",…].
std::string unitsText(const StationRecord& station);
std::string rollingText(const StationRecord& station);
/// False where the texts are something else.
bool readUnits(std::string_view text, StationRecord& station);
bool readRolling(std::string_view text, StationRecord& station);

constexpr const char* kStationColumns = "id, name, feed, usUnits, units, rolling";
constexpr const char* kPlugInColumns = "id, station, className, title, archive, edition";
constexpr const char* kFireColumns = "id, plugIn, time, completed";
constexpr const char* kEffectColumns =
    "id, fire, plugIn, station, title, kind, what, state, queued, started, ended, result, detail, attempt, "
    "firstAttempt, again, handOver";

/// The row that the statement stands on, which selected those columns. A station's lists that cannot be read
/// are an error.
Result<StationRecord> readStation(SQLite::Statement& row);
PlugInRecord readPlugIn(SQLite::Statement& row);
FireRecord readFire(SQLite::Statement& row);
EffectRecord readEffect(SQLite::Statement& row);

/// As a new row, whatever its id; gives the one that it got.
RecordId insertStation(SQLite::Database& database, const StationRecord& station);

/// All columns in their order, from the first parameter on; an id of 0 as none.
void bindStation(SQLite::Statement& to, const StationRecord& station);
void bindPlugIn(SQLite::Statement& to, const PlugInRecord& plugIn);
void bindFire(SQLite::Statement& to, const FireRecord& fire);
void bindEffect(SQLite::Statement& to, const EffectRecord& effect);

}  // namespace vigil
