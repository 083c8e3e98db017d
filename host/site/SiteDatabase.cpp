#include "host/site/SiteDatabase.hpp"

#include <sqlite3.h>

namespace vigil {

SiteDatabase::SiteDatabase(const std::string& path, Access access)
    // A connection serves one thread, so the library need not lock for it.
    : m_database(
          path,
          (access == Access::Read ? SQLite::OPEN_READONLY : SQLite::OPEN_READWRITE) | SQLite::OPEN_NOMUTEX,
          kBusyMilliseconds) {
    m_database.exec("PRAGMA cache_size = -" + std::to_string(kCacheKilobytes));
    m_database.exec("PRAGMA trusted_schema = OFF");  // a file from elsewhere runs no code of its own
}

void SiteDatabase::prepareToWrite() {
    m_database.exec("PRAGMA foreign_keys = ON");
    m_database.exec("PRAGMA journal_mode = WAL");
    m_database.exec("PRAGMA synchronous = FULL");
    m_database.exec("PRAGMA journal_size_limit = " + std::to_string(kLogBytes));
}

void SiteDatabase::markInUse() {
    m_database.exec("UPDATE meta SET value = 0 WHERE name = 'clean' AND value <> 0");
}

bool SiteDatabase::isClean() {
    return m_database.execAndGet("SELECT value FROM meta WHERE name = 'clean'").getInt() != 0;
}

void SiteDatabase::markClean() {
    m_database.exec("UPDATE meta SET value = 1 WHERE name = 'clean' AND value <> 1");
}

std::string SiteDatabase::firstDamage() {
    const std::string found = m_database.execAndGet("PRAGMA quick_check(1)").getString();
    return found == "ok" ? std::string() : found;
}

}  // namespace vigil
