#include <string>
#include <utility>

#include "host/site/SiteDatabase.hpp"
#include "host/site/SiteFile.hpp"
#include "host/site/SiteRows.hpp"
#include "host/site/SiteSql.hpp"

namespace vigil {
namespace {

std::string select(const char* columns, const char* rest) {
    return std::string("SELECT ") + columns + " FROM " + rest;
}

/// A change to one row. Of a text that is taken already the error says what `taken` does.
template <class T, class Change>
Result<T> changed(const SiteFile& site, SiteDatabase& database, const std::string& taken, Change change) {
    return asked<T>(site.path(), [&]() -> Result<T> {
        try {
            return inTransaction(database, [&]() -> Result<T> { return change(database.sql()); });
        } catch (const SQLite::Exception& failure) {
            if (isAboutUniqueness(failure)) return Error{taken};
            throw;
        }
    });
}

Result<Done> ranOnce(SQLite::Statement& statement, const std::string& missing) {
    if (statement.exec() == 0) return Error{missing};
    return Done{};
}

std::string takenName(const StationRecord& station) {
    return "a station is called \"" + station.name + "\" already";
}

std::string takenTitle(const PlugInRecord& plugIn) {
    return "a monitor is called \"" + plugIn.title + "\" already";
}

constexpr const char* kNoStation = "there is no such station any more";
constexpr const char* kOtherEdition = "the monitor is gone, or somebody else has changed it meanwhile";
constexpr const char* kNoPlugIn = "there is no such monitor any more";
const Error kNameless{"a station needs a name"};
const Error kUntitled{"a monitor needs a title"};

}  // namespace

Result<std::vector<StationRecord>> SiteFile::stations() const {
    return asked<std::vector<StationRecord>>(m_path, [&]() -> Result<std::vector<StationRecord>> {
        SQLite::Statement query(m_database->sql(), select(kStationColumns, "stations ORDER BY id"));
        std::vector<StationRecord> all;
        while (query.executeStep()) {
            auto station = readStation(query);
            if (!station) return Error{m_path + ": " + station.error().message};
            all.push_back(std::move(station).value());
        }
        return all;
    });
}

Result<std::vector<PlugInRecord>> SiteFile::plugIns() const {
    return asked<std::vector<PlugInRecord>>(m_path, [&] {
        SQLite::Statement query(m_database->sql(), select(kPlugInColumns, "plugIns ORDER BY id"));
        std::vector<PlugInRecord> all;
        while (query.executeStep())
            all.push_back(readPlugIn(query));
        return all;
    });
}

Result<std::optional<StationRecord>> SiteFile::stationNamed(std::string_view name) const {
    using Found = std::optional<StationRecord>;
    return asked<Found>(m_path, [&]() -> Result<Found> {
        SQLite::Statement query(m_database->sql(), select(kStationColumns, "stations WHERE name = ?"));
        query.bind(1, std::string(name));
        if (!query.executeStep()) return Found();
        auto station = readStation(query);
        if (!station) return Error{m_path + ": " + station.error().message};
        return Found(std::move(station).value());
    });
}

Result<std::optional<PlugInRecord>> SiteFile::plugInTitled(std::string_view title) const {
    using Found = std::optional<PlugInRecord>;
    return asked<Found>(m_path, [&] {
        SQLite::Statement query(m_database->sql(), select(kPlugInColumns, "plugIns WHERE title = ?"));
        query.bind(1, std::string(title));
        return query.executeStep() ? Found(readPlugIn(query)) : Found();
    });
}

Result<RecordId> SiteFile::addStation(const StationRecord& station) {
    if (station.name.empty()) return kNameless;
    return changed<RecordId>(*this, *m_database, takenName(station), [&](SQLite::Database& database) {
        return Result<RecordId>(insertStation(database, station));
    });
}

Result<Done> SiteFile::editStation(const StationRecord& station) {
    if (station.name.empty()) return kNameless;
    return changed<Done>(*this, *m_database, takenName(station), [&](SQLite::Database& database) {
        SQLite::Statement update(database,
                                 "UPDATE stations SET name = ?2, feed = ?3, usUnits = ?4, units = ?5, "
                                 "rolling = ?6 WHERE id = ?1");
        bindStation(update, station);
        return ranOnce(update, kNoStation);
    });
}

Result<Done> SiteFile::removeStation(RecordId station) {
    return changed<Done>(*this, *m_database, {}, [&](SQLite::Database& database) {
        SQLite::Statement remove(database, "DELETE FROM stations WHERE id = ?");
        remove.bind(1, station);
        return ranOnce(remove, kNoStation);
    });
}

Result<RecordId> SiteFile::addPlugIn(const PlugInRecord& plugIn) {
    if (plugIn.title.empty()) return kUntitled;
    return changed<RecordId>(
        *this, *m_database, takenTitle(plugIn), [&](SQLite::Database& database) -> Result<RecordId> {
            SQLite::Statement owner(database, "SELECT 1 FROM stations WHERE id = ?");
            owner.bind(1, plugIn.station);
            if (!owner.executeStep()) return Error{kNoStation};
            SQLite::Statement insert(database, "INSERT INTO plugIns VALUES (?, ?, ?, ?, ?, ?)");
            PlugInRecord fresh = plugIn;
            fresh.id = 0;
            bindPlugIn(insert, fresh);
            insert.exec();
            return database.getLastInsertRowid();
        });
}

Result<Done> SiteFile::editPlugIn(const PlugInRecord& plugIn) {
    if (plugIn.title.empty()) return kUntitled;
    return changed<Done>(*this, *m_database, takenTitle(plugIn), [&](SQLite::Database& database) {
        SQLite::Statement update(database,
                                 "UPDATE plugIns SET title = ?, archive = ?, edition = edition + 1 "
                                 "WHERE id = ? AND edition = ?");
        update.bind(1, plugIn.title);
        update.bind(2, plugIn.archive);
        update.bind(3, plugIn.id);
        update.bind(4, plugIn.edition);
        return ranOnce(update, kOtherEdition);
    });
}

Result<Done> SiteFile::removePlugIn(RecordId plugIn) {
    return changed<Done>(*this, *m_database, {}, [&](SQLite::Database& database) {
        SQLite::Statement remove(database, "DELETE FROM plugIns WHERE id = ?");
        remove.bind(1, plugIn);
        return ranOnce(remove, kNoPlugIn);
    });
}

}  // namespace vigil
