#include <filesystem>
#include <string>
#include <utility>

#include "host/site/SiteBatch.hpp"
#include "host/site/SiteDatabase.hpp"
#include "host/site/SiteFile.hpp"
#include "host/site/SiteForget.hpp"
#include "host/site/SiteRows.hpp"
#include "host/site/SiteSql.hpp"

namespace vigil {
namespace {

std::string whatIsKnown(const EffectRecord& effect) {
    if (!effect.started) return "it did not begin: the program stopped before";
    if (effect.kind == EffectRecord::Mail || effect.kind == EffectRecord::Sms)
        return "may have been sent: the program stopped before the answer came";
    return "the program stopped while it was under way";
}

EffectRecord interrupted(EffectRecord effect, Date now) {
    effect.detail = whatIsKnown(effect) + (effect.detail.empty() ? "" : "\n") + effect.detail;
    effect.state = EffectRecord::Ended;
    effect.ended = now;
    effect.result = "interrupted";
    return effect;
}

std::vector<EffectRecord> readEffects(SQLite::Statement& query) {
    std::vector<EffectRecord> all;
    while (query.executeStep())
        all.push_back(readEffect(query));
    return all;
}

std::string allEffects(const std::string& rest) {
    return std::string("SELECT ") + kEffectColumns + " FROM effects " + rest;
}

/// Those whose latest attempt ended with a date for the next. One that has begun since, whatever became of
/// it, is a later attempt.
std::vector<DeferredEffect> readDeferred(SQLite::Database& database) {
    SQLite::Statement query(
        database,
        allEffects("AS e WHERE again IS NOT NULL AND state = 'ended' AND NOT EXISTS (SELECT 1 FROM effects "
                   "AS n WHERE n.firstAttempt = ifnull(e.firstAttempt, e.id) AND n.attempt > "
                   "e.attempt) ORDER BY id"));
    SQLite::Statement first(database, "SELECT queued FROM effects WHERE id = ?");
    std::vector<DeferredEffect> all;
    for (EffectRecord& last : readEffects(query)) {
        Date asked = last.queued;
        first.bind(1, last.firstAttempt);
        if (first.executeStep()) asked = Date(first.getColumn(0).getDouble());
        first.reset();
        all.push_back({std::move(last), asked});
    }
    return all;
}

}  // namespace

Result<Interrupted> SiteFile::openLedger(Date now) {
    return asked<Interrupted>(m_path, [&]() -> Result<Interrupted> {
        SQLite::Database& database = m_database->sql();
        Interrupted found;
        SQLite::Statement fires(
            database, std::string("SELECT ") + kFireColumns + " FROM fires WHERE completed = 0 ORDER BY id");
        while (fires.executeStep())
            found.fires.push_back(readFire(fires));
        SQLite::Statement open(database, allEffects("WHERE state <> 'ended' ORDER BY id"));
        for (EffectRecord& effect : readEffects(open))
            found.effects.push_back(interrupted(std::move(effect), now));
        found.deferred = readDeferred(database);
        const Date before = now.plus(-kKeptSeconds);
        if (found.effects.empty() && !hasOlder(database, before)) return found;
        const auto written = inTransaction(*m_database, [&]() -> Result<Done> {
            SQLite::Statement put(database, kPutEffect);
            for (const EffectRecord& effect : found.effects) {
                bindEffect(put, effect);
                put.exec();
                put.reset();
            }
            forgetOlder(database, before);
            return Done{};
        });
        if (!written) return written.error();
        return found;
    });
}

Result<std::vector<EffectRecord>> SiteFile::effects(const EffectQuery& query) const {
    return asked<std::vector<EffectRecord>>(m_path, [&] {
        std::string where = "WHERE true";
        if (query.since) where += " AND queued >= :since";
        if (query.title) where += " AND title = :title";
        if (query.station) where += " AND station = :station";
        if (query.failed) where += " AND state = 'ended' AND result <> 'succeeded'";
        SQLite::Statement newest(m_database->sql(),
                                 "SELECT * FROM (" +
                                     allEffects(where + " ORDER BY queued DESC, id DESC LIMIT :limit") +
                                     ") ORDER BY queued, id");
        if (query.since) newest.bind(":since", query.since->secondsSinceReference());
        if (query.title) newest.bind(":title", *query.title);
        if (query.station) newest.bind(":station", *query.station);
        newest.bind(":limit", static_cast<std::int64_t>(query.limit));
        return readEffects(newest);
    });
}

Result<std::optional<FireRecord>> SiteFile::fire(RecordId id) const {
    using Found = std::optional<FireRecord>;
    return asked<Found>(m_path, [&] {
        SQLite::Statement query(m_database->sql(),
                                std::string("SELECT ") + kFireColumns + " FROM fires WHERE id = ?");
        query.bind(1, id);
        return query.executeStep() ? Found(readFire(query)) : Found();
    });
}

Result<std::map<RecordId, Date>> SiteFile::lastFires() const {
    return asked<std::map<RecordId, Date>>(m_path, [&] {
        std::map<RecordId, Date> last;
        SQLite::Statement query(m_database->sql(), "SELECT plugIn, max(time) FROM fires GROUP BY plugIn");
        while (query.executeStep())
            last[query.getColumn(0).getInt64()] = Date(query.getColumn(1).getDouble());
        return last;
    });
}

Result<std::vector<EffectRecord>> SiteFile::lastEffects() const {
    return asked<std::vector<EffectRecord>>(m_path, [&] {
        SQLite::Statement query(m_database->sql(),
                                allEffects("WHERE id IN (SELECT max(id) FROM effects WHERE state = 'ended' "
                                           "AND plugIn IS NOT NULL GROUP BY plugIn) ORDER BY id"));
        return readEffects(query);
    });
}

Result<SiteSummary> SiteFile::summary() const {
    return asked<SiteSummary>(m_path, [&] {
        SQLite::Database& database = m_database->sql();
        const auto count = [&](const char* rows) {
            return static_cast<std::size_t>(
                database.execAndGet(std::string("SELECT count(*) FROM ") + rows).getInt64());
        };
        SiteSummary summary = {.version = versionOf(database),
                               .stations = count("stations"),
                               .plugIns = count("plugIns"),
                               .fires = count("fires"),
                               .openFires = count("fires WHERE completed = 0"),
                               .effects = count("effects"),
                               .openEffects = count("effects WHERE state <> 'ended'"),
                               .clean = m_database->isClean()};
        for (const char* part : {"", "-wal"}) {
            std::error_code absent;
            const auto bytes = std::filesystem::file_size(m_path + part, absent);
            if (!absent) summary.bytes += bytes;
        }
        SQLite::Statement oldest(database, "SELECT min(queued) FROM effects");
        if (oldest.executeStep() && !oldest.getColumn(0).isNull())
            summary.oldest = Date(oldest.getColumn(0).getDouble());
        return summary;
    });
}

Result<RecordId> SiteFile::highestId() const {
    return asked<RecordId>(m_path,
                           [&] { return RecordId{m_database->sql().execAndGet(kHighestId).getInt64()}; });
}

Result<std::string> SiteFile::identity() const {
    return asked<std::string>(m_path, [&] {
        return m_database->sql()
            .execAndGet("SELECT value FROM metaTexts WHERE name = 'identity'")
            .getString();
    });
}

}  // namespace vigil
