#include <istream>
#include <string>
#include <utility>

#include <nlohmann/json.hpp>

#include "host/site/SiteBatch.hpp"
#include "host/site/SiteCheck.hpp"
#include "host/site/SiteLines.hpp"
#include "host/site/SiteRows.hpp"
#include "host/site/SiteSql.hpp"

namespace vigil {
namespace {

using Json = nlohmann::ordered_json;

/// A line's own wrappings around an archive.
constexpr std::size_t kMostLineDepth = kMostJsonDepth + 2;

// These throw what the JSON library throws where a member is missing or of another kind.

std::optional<Date> dateOf(const Json& json, const char* member) {
    const auto found = json.find(member);
    return found == json.end() ? std::nullopt : std::optional(Date(found->get<double>()));
}

StationRecord stationOf(const Json& json) {
    return {.id = json.at("id").get<RecordId>(),
            .name = json.at("name").get<std::string>(),
            .feed = json.at("feed").get<std::string>(),
            .usUnits = json.at("usUnits").get<bool>(),
            .units = json.at("units").get<std::vector<std::pair<std::string, std::string>>>(),
            .rolling = json.at("rolling").get<std::vector<std::string>>()};
}

PlugInRecord plugInOf(const Json& json) {
    const Json& archive = json.at("archive");
    return {.id = json.at("id").get<RecordId>(),
            .station = json.at("station").get<RecordId>(),
            .className = json.at("className").get<std::string>(),
            .title = json.at("title").get<std::string>(),
            .archive = archive.is_string() ? archive.get<std::string>() : archive.dump(2),
            .edition = json.at("edition").get<std::int64_t>()};
}

FireRecord fireOf(const Json& json) {
    return {.id = json.at("id").get<RecordId>(),
            .plugIn = json.at("plugIn").get<RecordId>(),
            .time = Date(json.at("time").get<double>()),
            .completed = json.at("completed").get<bool>()};
}

Result<EffectRecord> effectOf(const Json& json) {
    const auto kind = effectKind(json.at("kind").get<std::string>());
    const auto state = effectState(json.at("state").get<std::string>());
    if (!kind || !state) return Error{"an effect of an unknown kind or state"};
    return EffectRecord{.id = json.at("id").get<RecordId>(),
                        .fire = json.value("fire", RecordId{0}),
                        .plugIn = json.value("plugIn", RecordId{0}),
                        .station = json.at("station").get<std::string>(),
                        .title = json.at("title").get<std::string>(),
                        .kind = *kind,
                        .what = json.at("what").get<std::string>(),
                        .state = *state,
                        .queued = Date(json.at("queued").get<double>()),
                        .started = dateOf(json, "started"),
                        .ended = dateOf(json, "ended"),
                        .result = json.at("result").get<std::string>(),
                        .detail = json.at("detail").get<std::string>(),
                        .attempt = json.value("attempt", 1),
                        .firstAttempt = json.value("firstAttempt", RecordId{0}),
                        .again = dateOf(json, "again"),
                        .handOver = json.value("handOver", std::string())};
}

class Rows {
  public:
    explicit Rows(SQLite::Database& database)
        : m_station(database, "INSERT INTO stations VALUES (?, ?, ?, ?, ?, ?)"),
          m_plugIn(database, "INSERT INTO plugIns VALUES (?, ?, ?, ?, ?, ?)"),
          m_fire(database, "INSERT INTO fires VALUES (?, ?, ?, ?)"),
          m_effect(database,
                   "INSERT INTO effects VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)") {}

    Result<Done> insert(const std::string& member, const Json& json) {
        if (member == "station") {
            bindStation(m_station, stationOf(json));
            return run(m_station);
        }
        if (member == "plugIn") {
            bindPlugIn(m_plugIn, plugInOf(json));
            return run(m_plugIn);
        }
        if (member == "fire") {
            bindFire(m_fire, fireOf(json));
            return run(m_fire);
        }
        if (member != "effect") return Error{"\"" + member + "\" is no row of a site"};
        const auto effect = effectOf(json);
        if (!effect) return effect.error();
        bindEffect(m_effect, effect.value());
        return run(m_effect);
    }

  private:
    static Result<Done> run(SQLite::Statement& statement) {
        statement.exec();
        statement.reset();
        return Done{};
    }

    SQLite::Statement m_station, m_plugIn, m_fire, m_effect;
};

Result<Done> insertLine(Rows& rows, const std::string& line) {
    if (jsonDepth(line) > kMostLineDepth) return Error{"lists inside lists, deeper than any archive"};
    try {
        const Json json = Json::parse(line);
        if (!json.is_object() || json.size() != 1) return Error{"expected an object of one row"};
        return rows.insert(json.begin().key(), json.begin().value());
    } catch (const Json::exception& failure) {
        return Error{failure.what()};
    } catch (const SQLite::Exception& failure) {
        if (!isAboutTheRow(failure)) throw;
        return Error{failure.what()};
    }
}

}  // namespace

bool beginsAsSiteLines(std::string_view firstLine) {
    if (jsonDepth(firstLine) > kMostLineDepth) return false;
    const Json json = Json::parse(firstLine, nullptr, /*allow_exceptions=*/false);
    return json.is_object() && json.contains("format") && json["format"] == kSiteLinesFormat;
}

Result<Done> readSiteLines(std::istream& from, SQLite::Database& to) {
    std::string line;
    std::getline(from, line);
    const Json head = Json::parse(line, nullptr, /*allow_exceptions=*/false);
    if (!beginsAsSiteLines(line) || !head.contains("version") || head["version"] != kSiteLinesVersion)
        return Error{"line 1: not a site in lines that this program reads"};
    SQLite::Transaction transaction(to, SQLite::TransactionBehavior::IMMEDIATE);
    Rows rows(to);
    for (std::size_t number = 2; std::getline(from, line); ++number)
        if (auto inserted = insertLine(rows, line); !inserted)
            return Error{"line " + std::to_string(number) + ": " + inserted.error().message};
    const auto highest = head.find("highestId");
    if (highest != head.end() && highest->is_number_integer()) {
        SQLite::Statement set(to, "UPDATE meta SET value = ? WHERE name = 'highestId'");
        set.bind(1, highest->get<RecordId>());
        set.exec();
    }
    const auto identity = head.find("identity");
    if (identity != head.end() && identity->is_string() && !identity->get<std::string>().empty()) {
        SQLite::Statement set(to, "UPDATE metaTexts SET value = ? WHERE name = 'identity'");
        set.bind(1, identity->get<std::string>());
        set.exec();
    }
    transaction.commit();
    return Done{};
}

}  // namespace vigil
