#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <unistd.h>

#include "host/site/SiteFile.hpp"
#include "host/site/SiteFiles.hpp"
#include "host/site/SiteSchema.hpp"
#include "host/site/SiteSql.hpp"

namespace vigil {

Result<Done> SiteFile::create(const std::string& path) {
    if (auto made = makeFolderOf(path); !made) return made;
    // Under another name until it is complete, so that no other process ever opens half a site.
    const FreshFile fresh(path);
    if (auto made = fresh.make(); !made) return made;
    const auto written = asked<Done>(fresh.path(), [&]() {
        SQLite::Database database(fresh.path(), SQLite::OPEN_READWRITE);
        createTables(database, SiteSchema::current());
        return Done{};
    });
    if (!written) return fresh.told(written.error());
    return fresh.takePlace(/*ofAnother=*/false);
}

}  // namespace vigil
