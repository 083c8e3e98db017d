#include <fstream>
#include <sstream>

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/site/SiteFile.hpp"
#include "host/site/SiteSchema.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

std::string golden(int version) {
    std::ifstream file(VIGIL_SOURCE_DIR "/tests/golden/site/version-" + std::to_string(version) + ".sql");
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::vector<std::string> schemaOf(const std::string& path) {
    SQLite::Database database(path);
    SQLite::Statement query(database,
                            "SELECT name, sql FROM sqlite_schema WHERE sql IS NOT NULL ORDER BY name");
    std::vector<std::string> all;
    while (query.executeStep())
        all.push_back(query.getColumn(0).getString() + ": " + query.getColumn(1).getString());
    return all;
}

class SiteVersions : public testing::Test {
  protected:
    std::string restored(int version) const {
        std::string path = m_folder.path() + "/golden" + std::to_string(version) + ".vigilsite";
        SQLite::Database database(path, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
        database.exec(golden(version));
        return path;
    }
    std::string fresh() const {
        const std::string path = m_folder.path() + "/fresh.vigilsite";
        EXPECT_TRUE(SiteFile::create(path));
        return path;
    }

    TemporaryFolder m_folder;
};

/// What a file of every version holds, as the goldens do.
void expectTheGoldenSite(const SiteFile& site) {
    const auto stations = site.stations().value();
    ASSERT_EQ(stations.size(), 2U);
    EXPECT_EQ(stations[0].name, "Roof");
    EXPECT_TRUE(stations[0].usUnits);
    EXPECT_EQ(stations[0].units,
              (std::vector<std::pair<std::string, std::string>>{{"windSpeed", "kn"}, {"barometer", "hPa"}}));
    EXPECT_EQ(stations[0].rolling, std::vector<std::string>{"windSpeed mean 10"});
    EXPECT_EQ(stations[1].name, "Pönd");
    const auto plugIns = site.plugIns().value();
    ASSERT_EQ(plugIns.size(), 1U);
    EXPECT_EQ(plugIns[0].archive, R"({"format":"vigil-archive","version":1,"root":null})");
    const auto effects = site.effects().value();
    ASSERT_EQ(effects.size(), 3U);
    EXPECT_EQ(effects[0].detail, "exit status 0");
    EXPECT_EQ(effects[0].ended, Date(815000001.0));
    EXPECT_EQ(effects[1].kind, EffectRecord::Mail);
    EXPECT_EQ(effects[1].state, EffectRecord::Started);
    EXPECT_FALSE(effects[1].ended);
    EXPECT_EQ(effects[2].fire, 0);
    EXPECT_EQ(site.fire(41).value()->time, Date(815000000.125));
    EXPECT_EQ(site.highestId().value(), 45);
    EXPECT_EQ(site.identity().value(), "0123456789abcdef0123456789abcdef");
}

TEST_F(SiteVersions, aFileOfEachVersionIsRead) {
    for (int version = 1; version <= SiteSchema::current().version; ++version) {
        const std::string path = restored(version);
        const auto site = SiteFile::open(path, Access::Write);
        ASSERT_TRUE(site) << site.error().message;
        expectTheGoldenSite(*site.value());
        const Interrupted found = site.value()->openLedger(Date(815000100)).value();
        EXPECT_EQ(found.fires.size(), 1U);
        EXPECT_EQ(found.effects.size(), 2U);
    }
}

TEST_F(SiteVersions, theTablesOfAVersionAreWhatTheyWere) {
    EXPECT_EQ(schemaOf(fresh()), schemaOf(restored(SiteSchema::current().version)));
}

TEST_F(SiteVersions, theLedgerReadsWellWithAnyToolForSuchFiles) {
    SQLite::Database database(restored(1));
    SQLite::Statement query(database,
                            "SELECT title, kind, result, queued, started, ended FROM ledger WHERE id = 42");
    ASSERT_TRUE(query.executeStep());
    EXPECT_EQ(query.getColumn(0).getString(), "Frost");
    EXPECT_EQ(query.getColumn(1).getString(), "script");
    EXPECT_EQ(query.getColumn(3).getString(), "2026-10-29T20:53:20.250Z");
    EXPECT_EQ(query.getColumn(5).getString(), "2026-10-29T20:53:21.000Z");
}

// A coming version, made up: what happens to a file of the present one.

SiteSchema coming(std::string step) {
    SiteSchema schema = SiteSchema::current();
    schema.steps.push_back({.from = schema.version, .sql = std::move(step)});
    ++schema.version;
    return schema;
}

int versionIn(const std::string& path) {
    SQLite::Database database(path);
    return versionOf(database);
}

constexpr const char* kAddPlace = "ALTER TABLE stations ADD COLUMN place TEXT NOT NULL DEFAULT 'here';";

TEST_F(SiteVersions, anOlderFileIsBroughtUpToDateWhoeverOpensIt) {
    const SiteSchema next = coming(kAddPlace);
    for (const Access access : {Access::Write, Access::Read}) {
        const std::string path = m_folder.path() + "/older" + std::to_string(static_cast<int>(access));
        { SQLite::Database(path, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE).exec(golden(1)); }
        {
            const auto site = SiteFile::open(path, access, next);
            ASSERT_TRUE(site) << site.error().message;
            EXPECT_EQ(site.value()->access(), access);
            expectTheGoldenSite(*site.value());
        }
        EXPECT_EQ(versionIn(path), next.version);
        EXPECT_EQ(SQLite::Database(path).execAndGet("SELECT place FROM stations").getString(), "here");
        EXPECT_EQ(SiteFile::open(path, Access::Read).error().kind, SiteError::Kind::TooNew);
    }
}

TEST_F(SiteVersions, aStepThatFailsLeavesTheFileAsItWas) {
    const std::string path = restored(SiteSchema::current().version);
    const auto site = SiteFile::open(path, Access::Write,
                                     coming(std::string(kAddPlace) + "INSERT INTO nowhere VALUES (1);"));
    ASSERT_FALSE(site);
    EXPECT_EQ(site.error().kind, SiteError::Kind::Environment);
    EXPECT_THAT(site.error().message, testing::HasSubstr("nowhere"));
    EXPECT_EQ(versionIn(path), SiteSchema::current().version);
    EXPECT_EQ(schemaOf(path), schemaOf(fresh()));
}

TEST_F(SiteVersions, aFileFromBeforeAttemptsGetsThemAndTheirColumns) {
    const std::string path = restored(1);
    { ASSERT_TRUE(SiteFile::open(path, Access::Write)); }
    EXPECT_EQ(versionIn(path), 2);
    SQLite::Database migrated(path), made(fresh());
    const auto columns = [](SQLite::Database& database, const char* table) {
        SQLite::Statement query(database, std::string("SELECT name, type, \"notnull\", dflt_value FROM "
                                                      "pragma_table_xinfo('") +
                                              table + "') ORDER BY cid");
        std::vector<std::string> all;
        while (query.executeStep())
            all.push_back(query.getColumn(0).getString() + " " + query.getColumn(1).getString() + " " +
                          query.getColumn(2).getString() + " " + query.getColumn(3).getString());
        return all;
    };
    EXPECT_EQ(columns(migrated, "effects"), columns(made, "effects"));
    EXPECT_EQ(columns(migrated, "ledger"), columns(made, "ledger"));
    EXPECT_EQ(migrated.execAndGet("SELECT attempt FROM effects WHERE id = 44").getInt(), 1);
}

TEST_F(SiteVersions, severalStepsRunInTheirOrder) {
    SiteSchema next = coming(kAddPlace);
    next.steps.insert(next.steps.begin(),
                      {.from = next.version, .sql = "UPDATE stations SET place = 'there';"});
    ++next.version;
    const std::string path = restored(1);
    ASSERT_TRUE(SiteFile::open(path, Access::Write, next));
    EXPECT_EQ(SQLite::Database(path).execAndGet("SELECT place FROM stations").getString(), "there");
}

TEST_F(SiteVersions, aNumberThatNoVersionEverHadIsDamage) {
    const std::string path = restored(1);
    { SQLite::Database(path, SQLite::OPEN_READWRITE).exec("PRAGMA user_version = 0"); }
    EXPECT_EQ(SiteFile::open(path, Access::Write).error().kind, SiteError::Kind::Damaged);
}

}  // namespace
}  // namespace vigil
