#pragma once

namespace vigil {

/// The tables of a history, version 1. Dates are seconds since 2001-01-01 00:00:00 UTC. docs/history.md tells
/// people what stands where.
inline constexpr const char* kHistoryTables = R"(
CREATE TABLE facts(name TEXT PRIMARY KEY, value ANY NOT NULL) STRICT;
INSERT INTO facts VALUES('closed', 1);
CREATE TABLE stations(id INTEGER PRIMARY KEY, name TEXT NOT NULL DEFAULT '') STRICT;
CREATE TABLE layouts(id INTEGER PRIMARY KEY AUTOINCREMENT, station INTEGER NOT NULL, lastUsed REAL) STRICT;
CREATE INDEX layoutsOfStation ON layouts(station, id);
CREATE TABLE layoutKeys(layout INTEGER NOT NULL, slot INTEGER NOT NULL, key TEXT NOT NULL,
    PRIMARY KEY(layout, slot)) STRICT, WITHOUT ROWID;
CREATE TABLE layoutLabels(layout INTEGER NOT NULL, place INTEGER NOT NULL, key TEXT NOT NULL,
    name TEXT NOT NULL, unit TEXT NOT NULL, type INTEGER NOT NULL, visible INTEGER NOT NULL,
    PRIMARY KEY(layout, place)) STRICT, WITHOUT ROWID;
CREATE TABLE texts(id INTEGER PRIMARY KEY, text BLOB NOT NULL) STRICT;
CREATE TABLE notifications(id INTEGER PRIMARY KEY, station INTEGER NOT NULL, started REAL NOT NULL,
    layout INTEGER NOT NULL, readings BLOB NOT NULL) STRICT;
CREATE INDEX notificationsByTime ON notifications(station, started);
CREATE TABLE fires(id INTEGER PRIMARY KEY, plugIn INTEGER NOT NULL, station INTEGER NOT NULL,
    started REAL NOT NULL, actionsBegan REAL NOT NULL, actionsEnded REAL NOT NULL) STRICT;
CREATE INDEX firesByTime ON fires(plugIn, started);
CREATE TABLE plugIns(id INTEGER PRIMARY KEY, station INTEGER NOT NULL, title TEXT NOT NULL) STRICT;
CREATE TABLE watches(id INTEGER PRIMARY KEY, plugIn INTEGER NOT NULL, began REAL NOT NULL,
    beganBy TEXT NOT NULL, ended REAL, endedBy TEXT) STRICT;
CREATE INDEX watchesByTime ON watches(plugIn, began);
CREATE TABLE archives(id INTEGER PRIMARY KEY, plugIn INTEGER NOT NULL, since REAL NOT NULL,
    reason TEXT NOT NULL, archive TEXT NOT NULL) STRICT;
CREATE INDEX archivesByTime ON archives(plugIn, since);
CREATE TABLE losses(id INTEGER PRIMARY KEY, station INTEGER NOT NULL, began REAL NOT NULL,
    ended REAL NOT NULL, count INTEGER NOT NULL) STRICT;
CREATE INDEX lossesByTime ON losses(station, began);
)";

}  // namespace vigil
