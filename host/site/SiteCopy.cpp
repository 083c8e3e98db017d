#include "host/site/SiteCopy.hpp"

#include <SQLiteCpp/Backup.h>
#include <sqlite3.h>

#include "host/site/SiteCopy_Database.hpp"
#include "host/site/SiteDatabase.hpp"
#include "host/site/SiteFiles.hpp"
#include "host/site/SiteSql.hpp"

namespace vigil {
namespace {

/// Copied between two words of progress.
constexpr int kPagesAtOnce = 256;

}  // namespace

Result<Done> copyDatabase(const std::string& from, const std::string& to, const SiteProgress& progress) {
    return asked<Done>(from, [&]() -> Result<Done> {
        SiteDatabase source(from, Access::Read);
        // Inside a transaction the source stays as it is, whatever others write meanwhile.
        source.sql().exec("BEGIN");
        source.sql().execAndGet("SELECT count(*) FROM sqlite_schema");
        return asked<Done>(to, [&]() -> Result<Done> {
            SQLite::Database target(to, SQLite::OPEN_READWRITE);
            {
                SQLite::Backup backup(target, source.sql());
                while (backup.executeStep(kPagesAtOnce) != SQLITE_DONE) {
                    const auto all = static_cast<std::size_t>(backup.getTotalPageCount());
                    tellProgress(progress, "pages",
                                 all - static_cast<std::size_t>(backup.getRemainingPageCount()), all);
                }
            }
            target.exec("PRAGMA journal_mode = DELETE");
            return Done{};
        });
    });
}

Result<Done> exportSite(const std::string& site, const std::string& to, bool replace,
                        const SiteProgress& progress) {
    if (const auto opened = SiteFile::open(site, Access::Read); !opened) return Error{opened.error().message};
    const FreshFile fresh(to);
    if (auto made = fresh.make(); !made) return made;
    if (auto copied = copyDatabase(site, fresh.path(), progress); !copied) return fresh.told(copied.error());
    const auto marked = asked<Done>(to, [&] {
        // A copy is whole, however its original was closed.
        SQLite::Database copy(fresh.path(), SQLite::OPEN_READWRITE);
        copy.exec("UPDATE meta SET value = 1 WHERE name = 'clean'");
        return Done{};
    });
    if (!marked) return marked;
    return fresh.takePlace(/*ofAnother=*/replace);
}

Result<Done, SiteError> vacuumSite(const std::string& site) {
    auto opened = SiteFile::open(site, Access::Write);
    if (!opened) return opened.error();
    const auto done = asked<Done>(site, [&] {
        SiteDatabase database(site, Access::Write);
        database.sql().exec("VACUUM");
        database.sql().exec("PRAGMA wal_checkpoint(TRUNCATE)");
        return Done{};
    });
    if (!done) return SiteError{.kind = SiteError::Kind::Environment, .message = done.error().message};
    return Done{};
}

}  // namespace vigil
