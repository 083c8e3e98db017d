#pragma once

#include <string>

#include <SQLiteCpp/SQLiteCpp.h>

#include "host/site/SiteFile.hpp"
#include "host/site/SiteSchema.hpp"

namespace vigil {

/// One connection to a site file, set up as each of them has to be. One thread. Failures of the library are
/// thrown as SQLite::Exception.
class SiteDatabase {
  public:
    /// How long one connection waits for another's transaction.
    static constexpr int kBusyMilliseconds = 5000;
    /// Pages that a connection may hold in memory, in KiB: archives are read once, the rest is small.
    static constexpr int kCacheKilobytes = 256;
    /// What stays of the log beside the file when it has been worked in, in bytes.
    static constexpr int kLogBytes = 4 << 20;

    SiteDatabase(const std::string& path, Access access);

    SQLite::Database& sql() { return m_database; }

    /// Only once it is known that this is a site.
    void prepareToWrite();

    /// In each transaction that changes anything: the file is not clean until it is closed. Writes only where
    /// it has to.
    void markInUse();
    /// Whether the last one to write has closed the file.
    bool isClean();
    void markClean();

    /// The first thing that does not hold together; empty where all does.
    std::string firstDamage();

  private:
    SQLite::Database m_database;
};

/// `change()` as a transaction of its own, with what the mark of use needs. Throws like the library.
template <class Change>
auto inTransaction(SiteDatabase& database, Change change) {
    SQLite::Transaction transaction(database.sql(), SQLite::TransactionBehavior::IMMEDIATE);
    database.markInUse();
    auto result = change();
    if (result) transaction.commit();
    return result;
}

}  // namespace vigil
