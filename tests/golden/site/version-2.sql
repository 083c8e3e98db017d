PRAGMA application_id = 1449617772;
PRAGMA user_version = 2;
BEGIN;
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

INSERT INTO meta VALUES ('clean', 1), ('highestId', 40);
INSERT INTO metaTexts VALUES ('identity', '0123456789abcdef0123456789abcdef');
INSERT INTO stations VALUES (1, 'Roof', 'upload://127.0.0.1:8090/', 1, '[["windSpeed","kn"],["barometer","hPa"]]', '["windSpeed mean 10"]');
INSERT INTO stations VALUES (3, 'Pönd', '', 0, '[]', '[]');
INSERT INTO plugIns VALUES (2, 1, 'QRVVigilPlugIn', 'Frost', '{"format":"vigil-archive","version":1,"root":null}', 3);
INSERT INTO fires VALUES (41, 2, 815000000.125, 1);
INSERT INTO fires VALUES (43, 2, 815000060.25, 0);
INSERT INTO effects VALUES (42, 41, 2, 'Roof', 'Frost', 'script', 'gust.sh roof', 'ended', 815000000.25, 815000000.5, 815000001.0, 'succeeded', 'exit status 0', 1, NULL, NULL, '');
INSERT INTO effects VALUES (44, 43, 2, 'Roof', 'Frost', 'mail', 'to ann', 'started', 815000060.5, 815000060.75, NULL, '', '', 1, NULL, NULL, '');
INSERT INTO effects VALUES (45, NULL, NULL, '', '', 'speech', 'It freezes', 'queued', 815000061.0, NULL, NULL, '', '', 1, NULL, NULL, '');
COMMIT;
