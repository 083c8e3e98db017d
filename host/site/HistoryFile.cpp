#include "host/site/HistoryFile.hpp"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <system_error>

#include <SQLiteCpp/Statement.h>
#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include "host/site/HistoryFile_Tables.hpp"
#include "platform/Date.hpp"

namespace vigil {
namespace {

namespace fs = std::filesystem;

constexpr int kBusyMilliseconds = 5000;
/// The library itself gives this code for row numbers of a wrong type only, which no statement here has.
constexpr int kOfAnotherSite = SQLITE_MISMATCH;

int pragmaNumber(SQLite::Database& database, const char* name) {
    return database.execAndGet(std::string("PRAGMA ") + name).getInt();
}

[[noreturn]] void refuse(const std::string& why) {
    throw SQLite::Exception(why, SQLITE_NOTADB);
}

void checkIdentity(SQLite::Database& database) {
    if (pragmaNumber(database, "application_id") != kHistoryApplicationId) refuse("it is no history");
    if (pragmaNumber(database, "user_version") > kHistoryVersion) refuse("a newer version has written it");
}

void make(SQLite::Database& database) {
    database.exec("BEGIN IMMEDIATE");
    database.exec(kHistoryTables);
    database.exec("PRAGMA application_id = " + std::to_string(kHistoryApplicationId));
    database.exec("PRAGMA user_version = " + std::to_string(kHistoryVersion));
    database.exec("COMMIT");
}

// Archives hold people's addresses, so nobody else is to read them; the database's other files follow this
// one. One that exists is left alone: closing it here would give up the locks of this process's readers.
void createForOwner(const std::string& file) {
    constexpr mode_t kOwnerOnly = 0600;
    const int fresh = ::open(file.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, kOwnerOnly);
    if (fresh >= 0) ::close(fresh);
}

Date lastChange(const fs::path& file) {
    std::error_code failed;
    const auto changed = fs::last_write_time(file, failed);
    if (failed) return Date();
    const auto unix = std::chrono::file_clock::to_sys(changed).time_since_epoch();
    return Date::fromUnix(std::chrono::duration<double>(unix).count());
}

}  // namespace

bool isDamage(const SQLite::Exception& what) {
    constexpr int kPrimary = 0xFF;
    const int code = what.getErrorCode() & kPrimary;
    return code == SQLITE_CORRUPT || code == SQLITE_NOTADB;
}

std::unique_ptr<SQLite::Database> openHistoryForWriting(const std::string& file) {
    createForOwner(file);
    auto database = std::make_unique<SQLite::Database>(
        file, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE | SQLite::OPEN_NOMUTEX, kBusyMilliseconds);
    // A page of the cache that is not needed costs nothing; a small one keeps a service of one station small.
    database->exec("PRAGMA cache_size = -1024");
    const bool empty = pragmaNumber(*database, "page_count") == 0;
    if (!empty) checkIdentity(*database);
    // A history that has nothing yet has nothing to lose, and the start of a window would wait for the disk.
    if (empty) database->exec("PRAGMA synchronous = OFF");
    database->exec("PRAGMA journal_mode = WAL");
    database->exec("PRAGMA journal_size_limit = 4194304");
    if (empty) make(*database);
    database->exec("PRAGMA synchronous = NORMAL");
    return database;
}

std::unique_ptr<SQLite::Database> openHistoryForReading(const std::string& file) {
    auto database = std::make_unique<SQLite::Database>(file, SQLite::OPEN_READONLY | SQLite::OPEN_NOMUTEX,
                                                       kBusyMilliseconds);
    database->exec("PRAGMA cache_size = -4096");
    checkIdentity(*database);
    return database;
}

std::optional<HistoryObstacle> obstacleIn(const SQLite::Exception& what) {
    if (isDamage(what)) return HistoryObstacle::Damage;
    if (what.getErrorCode() == kOfAnotherSite) return HistoryObstacle::OtherSite;
    return std::nullopt;
}

bool isHistoryOf(SQLite::Database& database, const std::string& identity) {
    SQLite::Statement ask(database, "SELECT value FROM facts WHERE name = 'site'");
    return identity.empty() || !ask.executeStep() || ask.getColumn(0).getString() == identity;
}

void claimHistory(SQLite::Database& database, const std::string& identity) {
    if (!isHistoryOf(database, identity)) throw SQLite::Exception("belongs to another site", kOfAnotherSite);
    if (identity.empty()) return;
    SQLite::Statement claim(database, "INSERT OR IGNORE INTO facts VALUES('site', ?)");
    claim.bind(1, identity);
    claim.exec();
}

Result<std::string> setHistoryAside(const std::string& file, HistoryObstacle why) {
    std::string when = lastChange(file).isoText();
    when.erase(std::remove(when.begin(), when.end(), ':'), when.end());
    const std::string stem = file + (why == HistoryObstacle::Damage ? ".damaged-" : ".other-site-") + when;
    std::string to = stem;
    std::error_code failed;
    for (int i = 2; fs::exists(to, failed) || fs::exists(to + "-wal", failed); ++i)
        to = stem + "-" + std::to_string(i);
    fs::rename(file, to, failed);
    if (failed) return Error{"cannot rename " + file + ": " + failed.message()};
    // The log belongs to the old file: it must neither be lost nor be taken for the new one's.
    fs::rename(file + "-wal", to + "-wal", failed);
    fs::remove(file + "-shm", failed);
    return to;
}

}  // namespace vigil
