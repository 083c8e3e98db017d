#include "host/site/SiteRows.hpp"

#include <array>

#include <nlohmann/json.hpp>

namespace vigil {
namespace {

using Json = nlohmann::json;

constexpr std::array kKinds = {"script", "sound", "speech", "mail", "sms"};
constexpr std::array kStates = {"queued", "started", "ended"};

template <class Enum, std::size_t n>
std::optional<Enum> named(const std::array<const char*, n>& names, std::string_view text) {
    for (std::size_t i = 0; i < n; ++i)
        if (text == names[i]) return static_cast<Enum>(i);
    return std::nullopt;
}

std::string dump(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::optional<Date> dateAt(SQLite::Statement& row, int column) {
    const SQLite::Column value = row.getColumn(column);
    return value.isNull() ? std::nullopt : std::optional(Date(value.getDouble()));
}

void bindDate(SQLite::Statement& to, int parameter, const std::optional<Date>& date) {
    if (date)
        to.bind(parameter, date->secondsSinceReference());
    else
        to.bind(parameter);
}

void bindId(SQLite::Statement& to, int parameter, RecordId id) {
    if (id != 0)
        to.bind(parameter, id);
    else
        to.bind(parameter);
}

}  // namespace

const char* textOf(EffectRecord::Kind kind) {
    return kKinds.at(kind);
}

const char* textOf(EffectRecord::State state) {
    return kStates.at(state);
}

std::optional<EffectRecord::Kind> effectKind(std::string_view text) {
    return named<EffectRecord::Kind>(kKinds, text);
}

std::optional<EffectRecord::State> effectState(std::string_view text) {
    return named<EffectRecord::State>(kStates, text);
}

std::string unitsText(const StationRecord& station) {
    Json list = Json::array();
    for (const auto& [key, unit] : station.units)
        list.push_back(Json::array({key, unit}));
    return dump(list);
}

std::string rollingText(const StationRecord& station) {
    return dump(Json(station.rolling));
}

bool readUnits(std::string_view text, StationRecord& station) {
    const Json list = Json::parse(text, nullptr, /*allow_exceptions=*/false);
    if (!list.is_array()) return false;
    for (const Json& pair : list) {
        if (!pair.is_array() || pair.size() != 2 || !pair[0].is_string() || !pair[1].is_string())
            return false;
        station.units.emplace_back(pair[0].get<std::string>(), pair[1].get<std::string>());
    }
    return true;
}

bool readRolling(std::string_view text, StationRecord& station) {
    const Json list = Json::parse(text, nullptr, /*allow_exceptions=*/false);
    if (!list.is_array()) return false;
    for (const Json& one : list) {
        if (!one.is_string()) return false;
        station.rolling.push_back(one.get<std::string>());
    }
    return true;
}

Result<StationRecord> readStation(SQLite::Statement& row) {
    StationRecord station = {.id = row.getColumn(0).getInt64(),
                             .name = row.getColumn(1).getString(),
                             .feed = row.getColumn(2).getString(),
                             .usUnits = row.getColumn(3).getInt() != 0};
    if (!readUnits(row.getColumn(4).getString(), station) ||
        !readRolling(row.getColumn(5).getString(), station))
        return Error{"the station \"" + station.name + "\": its units or rolling readings are no list"};
    return station;
}

PlugInRecord readPlugIn(SQLite::Statement& row) {
    return {.id = row.getColumn(0).getInt64(),
            .station = row.getColumn(1).getInt64(),
            .className = row.getColumn(2).getString(),
            .title = row.getColumn(3).getString(),
            .archive = row.getColumn(4).getString(),
            .edition = row.getColumn(5).getInt64()};
}

FireRecord readFire(SQLite::Statement& row) {
    return {.id = row.getColumn(0).getInt64(),
            .plugIn = row.getColumn(1).getInt64(),
            .time = Date(row.getColumn(2).getDouble()),
            .completed = row.getColumn(3).getInt() != 0};
}

EffectRecord readEffect(SQLite::Statement& row) {
    // The table's own rules let no other text in; damage that does is listed as the first of its kind.
    const auto kind = effectKind(row.getColumn(5).getString());
    const auto state = effectState(row.getColumn(7).getString());
    return {.id = row.getColumn(0).getInt64(),
            .fire = row.getColumn(1).getInt64(),  // 0 where there is none
            .plugIn = row.getColumn(2).getInt64(),
            .station = row.getColumn(3).getString(),
            .title = row.getColumn(4).getString(),
            .kind = kind.value_or(EffectRecord::Script),
            .what = row.getColumn(6).getString(),
            .state = state.value_or(EffectRecord::Queued),
            .queued = Date(row.getColumn(8).getDouble()),
            .started = dateAt(row, 9),
            .ended = dateAt(row, 10),
            .result = row.getColumn(11).getString(),
            .detail = row.getColumn(12).getString(),
            .attempt = row.getColumn(13).getInt(),
            .firstAttempt = row.getColumn(14).getInt64(),
            .again = dateAt(row, 15),
            .handOver = row.getColumn(16).getString()};
}

RecordId insertStation(SQLite::Database& database, const StationRecord& station) {
    SQLite::Statement insert(database, "INSERT INTO stations VALUES (?, ?, ?, ?, ?, ?)");
    StationRecord fresh = station;
    fresh.id = 0;
    bindStation(insert, fresh);
    insert.exec();
    return database.getLastInsertRowid();
}

void bindStation(SQLite::Statement& to, const StationRecord& station) {
    bindId(to, 1, station.id);
    to.bind(2, station.name);
    to.bind(3, station.feed);
    to.bind(4, station.usUnits ? 1 : 0);
    to.bind(5, unitsText(station));
    to.bind(6, rollingText(station));
}

void bindPlugIn(SQLite::Statement& to, const PlugInRecord& plugIn) {
    bindId(to, 1, plugIn.id);
    to.bind(2, plugIn.station);
    to.bind(3, plugIn.className);
    to.bind(4, plugIn.title);
    to.bind(5, plugIn.archive);
    to.bind(6, plugIn.edition);
}

void bindFire(SQLite::Statement& to, const FireRecord& fire) {
    bindId(to, 1, fire.id);
    to.bind(2, fire.plugIn);
    to.bind(3, fire.time.secondsSinceReference());
    to.bind(4, fire.completed ? 1 : 0);
}

void bindEffect(SQLite::Statement& to, const EffectRecord& effect) {
    bindId(to, 1, effect.id);
    bindId(to, 2, effect.fire);
    bindId(to, 3, effect.plugIn);
    to.bind(4, effect.station);
    to.bind(5, effect.title);
    to.bind(6, textOf(effect.kind));
    to.bind(7, effect.what);
    to.bind(8, textOf(effect.state));
    to.bind(9, effect.queued.secondsSinceReference());
    bindDate(to, 10, effect.started);
    bindDate(to, 11, effect.ended);
    to.bind(12, effect.result);
    to.bind(13, effect.detail);
    to.bind(14, effect.attempt);
    bindId(to, 15, effect.firstAttempt);
    bindDate(to, 16, effect.again);
    to.bind(17, effect.handOver);
}

}  // namespace vigil
