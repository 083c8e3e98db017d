#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <unistd.h>

#include "host/site/SiteFile.hpp"
#include "host/site/SiteFiles.hpp"
#include "host/site/SiteRows.hpp"
#include "host/site/SiteSchema.hpp"
#include "host/site/SiteSql.hpp"

namespace vigil {

Result<Done> SiteFile::create(const std::string& path, const std::vector<StationRecord>& stations) {
    if (auto made = makeFolderOf(path); !made) return made;
    // Under another name until it is complete, so that no other process ever opens half a site.
    const FreshFile fresh(path);
    if (auto made = fresh.make(); !made) return made;
    const auto written = asked<Done>(fresh.path(), [&]() {
        SQLite::Database database(fresh.path(), SQLite::OPEN_READWRITE);
        // A file that nobody knows yet need not survive anything; it is brought to the disk once, when it is
        // complete.
        database.exec("PRAGMA synchronous = OFF");
        database.exec("PRAGMA journal_mode = MEMORY");
        createTables(database, SiteSchema::current());
        for (const StationRecord& station : stations)
            insertStation(database, station);
        return Done{};
    });
    if (!written) return written;
    return fresh.takePlace(/*ofAnother=*/false);
}

}  // namespace vigil
