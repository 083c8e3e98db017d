#pragma once

#include <memory>
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

/// Renames a damaged file, with its log, after the time of its last change. Gives the new name.
Result<std::string> setHistoryAside(const std::string& file);

}  // namespace vigil
