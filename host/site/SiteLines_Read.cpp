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

/// What is wrong with a row, as the rest of a sentence about it: "has no \"name\"".
struct RowMistake {
    std::string says;
};

/// A member of a row; throws a `RowMistake` where it is missing or of another kind.
template <class T>
T taken(const Json& json, const char* member) {
    if (!json.is_object()) throw RowMistake{"is no object"};
    const auto found = json.find(member);
    if (found == json.end()) throw RowMistake{"has no \"" + std::string(member) + "\""};
    try {
        return found->template get<T>();
    } catch (const Json::exception&) {
        throw RowMistake{"has a \"" + std::string(member) + "\" of the wrong kind"};
    }
}

std::optional<Date> dateOf(const Json& json, const char* member) {
    const auto found = json.find(member);
    return found == json.end() ? std::nullopt : std::optional(Date(taken<double>(json, member)));
}

StationRecord stationOf(const Json& json) {
    return {.id = taken<RecordId>(json, "id"),
            .name = taken<std::string>(json, "name"),
            .feed = taken<std::string>(json, "feed"),
            .usUnits = taken<bool>(json, "usUnits"),
            .units = taken<std::vector<std::pair<std::string, std::string>>>(json, "units"),
            .rolling = taken<std::vector<std::string>>(json, "rolling")};
}

PlugInRecord plugInOf(const Json& json) {
    const Json archive = taken<Json>(json, "archive");
    return {.id = taken<RecordId>(json, "id"),
            .station = taken<RecordId>(json, "station"),
            .className = taken<std::string>(json, "className"),
            .title = taken<std::string>(json, "title"),
            .archive = archive.is_string() ? archive.get<std::string>() : archive.dump(2),
            .edition = taken<std::int64_t>(json, "edition")};
}

FireRecord fireOf(const Json& json) {
    return {.id = taken<RecordId>(json, "id"),
            .plugIn = taken<RecordId>(json, "plugIn"),
            .time = Date(taken<double>(json, "time")),
            .completed = taken<bool>(json, "completed")};
}

Result<EffectRecord> effectOf(const Json& json) {
    const auto kind = effectKind(taken<std::string>(json, "kind"));
    const auto state = effectState(taken<std::string>(json, "state"));
    if (!kind || !state) return Error{"an effect of an unknown kind or state"};
    return EffectRecord{.id = taken<RecordId>(json, "id"),
                        .fire = json.contains("fire") ? taken<RecordId>(json, "fire") : 0,
                        .plugIn = json.contains("plugIn") ? taken<RecordId>(json, "plugIn") : 0,
                        .station = taken<std::string>(json, "station"),
                        .title = taken<std::string>(json, "title"),
                        .kind = *kind,
                        .what = taken<std::string>(json, "what"),
                        .state = *state,
                        .queued = Date(taken<double>(json, "queued")),
                        .started = dateOf(json, "started"),
                        .ended = dateOf(json, "ended"),
                        .result = taken<std::string>(json, "result"),
                        .detail = taken<std::string>(json, "detail")};
}

class Rows {
  public:
    explicit Rows(SQLite::Database& database)
        : m_station(database, "INSERT INTO stations VALUES (?, ?, ?, ?, ?, ?)"),
          m_plugIn(database, "INSERT INTO plugIns VALUES (?, ?, ?, ?, ?, ?)"),
          m_fire(database, "INSERT INTO fires VALUES (?, ?, ?, ?)"),
          m_effect(database, "INSERT INTO effects VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)") {}

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

/// What people call a row.
std::string wordOf(const std::string& member) {
    if (member == "plugIn") return "monitor";
    return member == "effect" ? "action" : member;
}

Result<Done> insertLine(Rows& rows, const std::string& line) {
    if (jsonDepth(line) > kMostLineDepth) return Error{"lists inside lists, deeper than any archive"};
    const Json json = Json::parse(line, nullptr, /*allow_exceptions=*/false);
    if (json.is_discarded()) return Error{"is not JSON"};
    if (!json.is_object() || json.size() != 1) return Error{"expected an object of one row"};
    const std::string& member = json.begin().key();
    try {
        return rows.insert(member, json.begin().value());
    } catch (const RowMistake& mistake) {
        return Error{"the " + wordOf(member) + " " + mistake.says};
    } catch (const SQLite::Exception& failure) {
        if (!isAboutTheRow(failure)) throw;
        const std::string says = isAboutUniqueness(failure) ? "has an id or a name that another one has"
                                                            : "does not belong to the rows before it";
        return Error{"the " + wordOf(member) + " " + says + " (" + failure.what() + ")"};
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
    transaction.commit();
    return Done{};
}

}  // namespace vigil
