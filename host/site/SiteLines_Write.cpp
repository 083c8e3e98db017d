#include <string>

#include <nlohmann/json.hpp>

#include "host/site/SiteCheck.hpp"
#include "host/site/SiteCopy.hpp"
#include "host/site/SiteDatabase.hpp"
#include "host/site/SiteLines.hpp"
#include "host/site/SiteRows.hpp"
#include "host/site/SiteSql.hpp"

namespace vigil {
namespace {

using Json = nlohmann::ordered_json;

/// The archive as it is read by people; one that is no JSON, or too deep to go into, as a text.
Json archiveJson(const std::string& archive) {
    if (jsonDepth(archive) > kMostJsonDepth) return archive;
    Json json = Json::parse(archive, nullptr, /*allow_exceptions=*/false);
    return json.is_object() ? json : Json(archive);
}

Json toJson(const StationRecord& station) {
    Json units = Json::array();
    for (const auto& [key, unit] : station.units)
        units.push_back(Json::array({key, unit}));
    return {{"id", station.id},           {"name", station.name},      {"feed", station.feed},
            {"usUnits", station.usUnits}, {"units", std::move(units)}, {"rolling", station.rolling}};
}

Json toJson(const PlugInRecord& plugIn) {
    return {{"id", plugIn.id},       {"station", plugIn.station}, {"className", plugIn.className},
            {"title", plugIn.title}, {"edition", plugIn.edition}, {"archive", archiveJson(plugIn.archive)}};
}

Json toJson(const FireRecord& fire) {
    return {{"id", fire.id},
            {"plugIn", fire.plugIn},
            {"time", fire.time.secondsSinceReference()},
            {"completed", fire.completed}};
}

Json toJson(const EffectRecord& effect) {
    Json json = {{"id", effect.id}};
    if (effect.fire != 0) json["fire"] = effect.fire;
    if (effect.plugIn != 0) json["plugIn"] = effect.plugIn;
    json["station"] = effect.station;
    json["title"] = effect.title;
    json["kind"] = textOf(effect.kind);
    json["what"] = effect.what;
    json["state"] = textOf(effect.state);
    json["queued"] = effect.queued.secondsSinceReference();
    if (effect.started) json["started"] = effect.started->secondsSinceReference();
    if (effect.ended) json["ended"] = effect.ended->secondsSinceReference();
    json["result"] = effect.result;
    json["detail"] = effect.detail;
    if (effect.attempt != 1) json["attempt"] = effect.attempt;
    if (effect.firstAttempt != 0) json["firstAttempt"] = effect.firstAttempt;
    if (effect.again) json["again"] = effect.again->secondsSinceReference();
    if (!effect.handOver.empty()) json["handOver"] = effect.handOver;
    return json;
}

/// Writes one table after the other.
class Lines {
  public:
    Lines(SQLite::Database& database, const LineSink& sink, const SiteProgress& progress)
        : m_database(database), m_sink(sink), m_progress(progress) {}

    bool write(const Json& json) {
        // Bytes that are no UTF-8 (a script may write anything) read as U+FFFD: JSON knows no other way.
        return m_sink(json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n");
    }

    /// False where it could not be written.
    template <class Read>
    bool table(const char* member, const char* name, const char* columns, Read read) {
        const std::string from = std::string(" FROM ") + name;
        const auto all = static_cast<std::size_t>(m_database.execAndGet("SELECT count(*)" + from).getInt64());
        SQLite::Statement rows(m_database, std::string("SELECT ") + columns + from + " ORDER BY id");
        for (std::size_t done = 0; rows.executeStep(); ++done) {
            tellProgress(m_progress, name, done, all);
            if (!write({{member, toJson(read(rows))}})) return false;
        }
        return true;
    }

  private:
    SQLite::Database& m_database;
    const LineSink& m_sink;
    const SiteProgress& m_progress;
};

StationRecord stationOrNothing(SQLite::Statement& row) {
    auto station = readStation(row);
    // `check` names lists that are damaged; a copy takes along what can be read.
    return station ? std::move(station).value()
                   : StationRecord{.id = row.getColumn(0).getInt64(),
                                   .name = row.getColumn(1).getString(),
                                   .feed = row.getColumn(2).getString(),
                                   .usUnits = row.getColumn(3).getInt() != 0};
}

}  // namespace

Result<Done> exportSiteLines(const std::string& site, const LineSink& sink, const SiteProgress& progress) {
    const auto opened = SiteFile::open(site, Access::Read);
    if (!opened) return Error{opened.error().message};
    const auto highest = opened.value()->highestId();
    if (!highest) return highest.error();
    const auto identity = opened.value()->identity();
    if (!identity) return identity.error();
    return asked<Done>(site, [&]() -> Result<Done> {
        SiteDatabase database(site, Access::Read);
        database.sql().exec("BEGIN");  // one moment for all tables
        Lines lines(database.sql(), sink, progress);
        const bool whole = lines.write({{"format", kSiteLinesFormat},
                                        {"version", kSiteLinesVersion},
                                        {"highestId", highest.value()},
                                        {"identity", identity.value()}}) &&
                           lines.table("station", "stations", kStationColumns, stationOrNothing) &&
                           lines.table("plugIn", "plugIns", kPlugInColumns, readPlugIn) &&
                           lines.table("fire", "fires", kFireColumns, readFire) &&
                           lines.table("effect", "effects", kEffectColumns, readEffect);
        if (!whole) return Error{"the lines could not be written"};
        return Done{};
    });
}

}  // namespace vigil
