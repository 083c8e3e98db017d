#pragma once

#include <memory>
#include <optional>
#include <string>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>

#include "platform/Result.hpp"

// A history's file as a database. What goes wrong inside it is thrown as SQLite::Exception and caught by the
// writer and the reader. One thread a connection.

namespace vigil {

inline constexpr int kHistoryApplicationId = 0x56694869;
inline constexpr int kHistoryVersion = 1;

/// Whether the file is no readable database any more, and not merely out of reach.
bool isDamage(const SQLite::Exception& what);

/// A connection that may write: made with its tables where there is no file yet.
std::unique_ptr<SQLite::Database> openHistoryForWriting(const std::string& file);
/// A connection that only reads; the file must be there.
std::unique_ptr<SQLite::Database> openHistoryForReading(const std::string& file);

/// Why a file cannot be gone on with, and a new one is begun.
enum class HistoryObstacle { Damage, OtherSite };

/// What of this kind a failure tells of; nothing where it may pass.
std::optional<HistoryObstacle> obstacleIn(const SQLite::Exception& what);

/// Makes a history that belongs to nobody yet that of a site; throws where it is another one's. An empty
/// identity is not known, and nothing is done.
void claimHistory(SQLite::Database& database, const std::string& identity);
/// Whether it belongs to that site, or to nobody.
bool isHistoryOf(SQLite::Database& database, const std::string& identity);

/// Renames a file, with its log, after the obstacle and the time of its last change. Gives the new name.
/// Throws nothing.
Result<std::string> setHistoryAside(const std::string& file, HistoryObstacle why);

}  // namespace vigil
