#include "host/site/SiteSchema.hpp"

#include <algorithm>

namespace vigil {
namespace {

// A frozen version is never edited: what changes becomes a step and a higher version, and tests/golden/site
// holds a file of each.
constexpr const char* kVersion2 = R"sql(
CREATE TABLE meta (
    name TEXT NOT NULL PRIMARY KEY,
    value INTEGER NOT NULL
) STRICT, WITHOUT ROWID;

CREATE TABLE metaTexts (
    name TEXT NOT NULL PRIMARY KEY,
    value TEXT NOT NULL
) STRICT, WITHOUT ROWID;

CREATE TABLE stations (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    name TEXT NOT NULL UNIQUE CHECK (name <> ''),
    feed TEXT NOT NULL,
    usUnits INTEGER NOT NULL CHECK (usUnits IN (0, 1)),
    units TEXT NOT NULL,
    rolling TEXT NOT NULL
) STRICT;

CREATE TABLE plugIns (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    station INTEGER NOT NULL REFERENCES stations (id) ON DELETE CASCADE,
    className TEXT NOT NULL,
    title TEXT NOT NULL UNIQUE CHECK (title <> ''),
    archive TEXT NOT NULL,
    edition INTEGER NOT NULL
) STRICT;

CREATE TABLE fires (
    id INTEGER PRIMARY KEY,
    plugIn INTEGER NOT NULL REFERENCES plugIns (id) ON DELETE CASCADE,
    time REAL NOT NULL,
    completed INTEGER NOT NULL CHECK (completed IN (0, 1))
) STRICT;
CREATE INDEX firesByTime ON fires (time);
CREATE INDEX firesOpen ON fires (id) WHERE completed = 0;

CREATE TABLE effects (
    id INTEGER PRIMARY KEY,
    fire INTEGER,
    plugIn INTEGER REFERENCES plugIns (id) ON DELETE SET NULL,
    station TEXT NOT NULL,
    title TEXT NOT NULL,
    kind TEXT NOT NULL CHECK (kind IN ('script', 'sound', 'speech', 'mail', 'sms')),
    what TEXT NOT NULL,
    state TEXT NOT NULL CHECK (state IN ('queued', 'started', 'ended')),
    queued REAL NOT NULL,
    started REAL,
    ended REAL,
    result TEXT NOT NULL,
    detail TEXT NOT NULL,
    attempt INTEGER NOT NULL DEFAULT 1,
    firstAttempt INTEGER,
    again REAL,
    handOver TEXT NOT NULL DEFAULT ''
) STRICT;
CREATE INDEX effectsByTime ON effects (queued);
CREATE INDEX effectsByFire ON effects (fire) WHERE fire IS NOT NULL;
CREATE INDEX effectsOpen ON effects (id) WHERE state <> 'ended';
CREATE INDEX effectsByAttempt ON effects (firstAttempt) WHERE firstAttempt IS NOT NULL;
CREATE INDEX effectsAgain ON effects (id) WHERE again IS NOT NULL;

CREATE VIEW ledger AS
SELECT
    id, station, title, kind, what, state, attempt, result, detail,
    strftime('%Y-%m-%dT%H:%M:%fZ', queued + 978307200.0, 'unixepoch') AS queued,
    strftime('%Y-%m-%dT%H:%M:%fZ', started + 978307200.0, 'unixepoch') AS started,
    strftime('%Y-%m-%dT%H:%M:%fZ', ended + 978307200.0, 'unixepoch') AS ended,
    strftime('%Y-%m-%dT%H:%M:%fZ', again + 978307200.0, 'unixepoch') AS again
FROM effects;

INSERT INTO meta (name, value) VALUES ('clean', 1), ('highestId', 0);
INSERT INTO metaTexts (name, value) VALUES ('identity', lower(hex(randomblob(16))));
)sql";

// Mail and short messages have attempts.
constexpr const char* kFrom1To2 = R"sql(
ALTER TABLE effects ADD COLUMN attempt INTEGER NOT NULL DEFAULT 1;
ALTER TABLE effects ADD COLUMN firstAttempt INTEGER;
ALTER TABLE effects ADD COLUMN again REAL;
ALTER TABLE effects ADD COLUMN handOver TEXT NOT NULL DEFAULT '';
CREATE INDEX effectsByAttempt ON effects (firstAttempt) WHERE firstAttempt IS NOT NULL;
CREATE INDEX effectsAgain ON effects (id) WHERE again IS NOT NULL;
DROP VIEW ledger;
CREATE VIEW ledger AS
SELECT
    id, station, title, kind, what, state, attempt, result, detail,
    strftime('%Y-%m-%dT%H:%M:%fZ', queued + 978307200.0, 'unixepoch') AS queued,
    strftime('%Y-%m-%dT%H:%M:%fZ', started + 978307200.0, 'unixepoch') AS started,
    strftime('%Y-%m-%dT%H:%M:%fZ', ended + 978307200.0, 'unixepoch') AS ended,
    strftime('%Y-%m-%dT%H:%M:%fZ', again + 978307200.0, 'unixepoch') AS again
FROM effects;
)sql";

void setVersion(SQLite::Database& database, int version) {
    database.exec("PRAGMA user_version = " + std::to_string(version));
}

}  // namespace

const SiteSchema& SiteSchema::current() {
    static const SiteSchema schema = {
        .version = 2, .create = kVersion2, .steps = {{.from = 1, .sql = kFrom1To2}}};
    return schema;
}

void createTables(SQLite::Database& database, const SiteSchema& schema) {
    SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
    database.exec("PRAGMA application_id = " + std::to_string(kSiteApplicationId));
    database.exec(schema.create);
    setVersion(database, schema.version);
    transaction.commit();
}

int versionOf(SQLite::Database& database) {
    return database.execAndGet("PRAGMA user_version").getInt();
}

bool bringUpToDate(SQLite::Database& database, const SiteSchema& schema) {
    SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
    int version = versionOf(database);
    for (; version < schema.version; ++version) {
        const auto step = std::find_if(schema.steps.begin(), schema.steps.end(),
                                       [&](const SchemaStep& one) { return one.from == version; });
        if (step == schema.steps.end()) return false;
        database.exec(step->sql);
    }
    setVersion(database, version);
    transaction.commit();
    return true;
}

}  // namespace vigil
