#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <SQLiteCpp/SQLiteCpp.h>

namespace vigil {

/// From one version of the tables to the next.
struct SchemaStep {
    int from = 0;       ///< leads to from + 1
    std::string sql{};  ///< statements; run in the transaction that sets the new version
};

/// The tables of a site file, and how those of an earlier version become them.
struct SiteSchema {
    int version = 0;
    std::string create{};  ///< the statements of an empty site
    std::vector<SchemaStep> steps{};

    /// What this program reads and writes. docs/formats/site.md describes it.
    static const SiteSchema& current();
};

/// In the header of each site file, so that it is known without its name: "Vgil".
constexpr std::int32_t kSiteApplicationId = 0x5667696C;

/// Makes the tables in an empty database. Failures of the library are thrown.
void createTables(SQLite::Database& database, const SiteSchema& schema);

/// The version of the tables. Failures of the library are thrown.
int versionOf(SQLite::Database& database);

/// Takes an earlier version to the schema's, all steps or none. False where a step is missing. Failures of
/// the library are thrown, and the file is as it was.
bool bringUpToDate(SQLite::Database& database, const SiteSchema& schema);

}  // namespace vigil
