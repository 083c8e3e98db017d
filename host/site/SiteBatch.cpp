#include "host/site/SiteBatch.hpp"

#include "host/site/SiteForget.hpp"
#include "host/site/SiteRows.hpp"
#include "host/site/SiteSql.hpp"

namespace vigil {
namespace {

SiteDatabase& prepared(SiteDatabase& database) {
    database.prepareToWrite();
    return database;
}

}  // namespace

const char* const kPutEffect =
    "INSERT INTO effects (id, fire, plugIn, station, title, kind, what, state, queued, started, ended, "
    "result, detail, attempt, firstAttempt, again, handOver) "
    "VALUES (?1, ?2, (SELECT id FROM plugIns WHERE id = ?3), "
    "?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14, ?15, ?16, ?17) "
    "ON CONFLICT (id) DO UPDATE SET fire = excluded.fire, plugIn = excluded.plugIn, station = "
    "excluded.station, "
    "title = excluded.title, kind = excluded.kind, what = excluded.what, state = excluded.state, "
    "queued = excluded.queued, started = excluded.started, ended = excluded.ended, result = excluded.result, "
    "detail = excluded.detail, attempt = excluded.attempt, firstAttempt = excluded.firstAttempt, "
    "again = excluded.again, handOver = excluded.handOver";

SiteBatch::SiteBatch(const std::string& path)
    : m_path(path),
      m_database(path, Access::Write),
      m_begin(prepared(m_database).sql(), "BEGIN IMMEDIATE"),
      m_mark(m_database.sql(), "UPDATE meta SET value = 0 WHERE name = 'clean' AND value <> 0"),
      m_commit(m_database.sql(), "COMMIT"),
      m_putFire(
          m_database.sql(),
          "INSERT INTO fires (id, plugIn, time, completed) VALUES (?, ?, ?, ?) ON CONFLICT (id) DO UPDATE "
          "SET plugIn = excluded.plugIn, time = excluded.time, completed = excluded.completed"),
      m_putEffect(m_database.sql(), kPutEffect),
      m_save(m_database.sql(), "UPDATE plugIns SET title = ?, archive = ? WHERE id = ? AND edition = ?"),
      m_complete(m_database.sql(), "UPDATE fires SET completed = 1 WHERE id = ?") {}

void SiteBatch::begin() {
    for (SQLite::Statement* statement : {&m_begin, &m_mark}) {
        statement->exec();
        statement->reset();
    }
}

void SiteBatch::commit() {
    m_commit.exec();
    m_commit.reset();
}

Result<Done> SiteBatch::ran(SQLite::Statement& statement, const char* missing) {
    try {
        const int rows = statement.exec();
        statement.reset();
        if (rows == 0 && missing) return Error{m_path + ": " + missing};
        return Done{};
    } catch (const SQLite::Exception& failure) {
        statement.tryReset();
        if (!isAboutTheRow(failure)) throw;
        return Error{failureText(m_path, failure)};
    }
}

Result<Done> SiteBatch::put(const FireRecord& fire) {
    bindFire(m_putFire, fire);
    return ran(m_putFire, nullptr);
}

Result<Done> SiteBatch::put(const EffectRecord& effect) {
    bindEffect(m_putEffect, effect);
    return ran(m_putEffect, nullptr);
}

Result<Done> SiteBatch::save(const PlugInRecord& plugIn) {
    m_save.bind(1, plugIn.title);
    m_save.bind(2, plugIn.archive);
    m_save.bind(3, plugIn.id);
    m_save.bind(4, plugIn.edition);
    return ran(m_save, "the monitor is gone or was changed meanwhile, so this state of it is not kept");
}

Result<Done> SiteBatch::complete(RecordId fire, const PlugInRecord& plugIn) {
    // The archive first: where it is refused, the fire stays open, so that the wait is made up at a start.
    if (auto saved = save(plugIn); !saved) return saved;
    m_complete.bind(1, fire);
    return ran(m_complete, nullptr);
}

Result<Done> SiteBatch::forget(Date before) {
    SQLite::Database& database = m_database.sql();
    if (!hasOlder(database, before)) return Done{};
    forgetOlder(database, before, kForgottenAtOnce);
    return Done{};
}

}  // namespace vigil
