#include "host/site/SiteCheck.hpp"

#include <filesystem>
#include <fstream>
#include <sstream>

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/site/SiteCopy.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class SiteChecks : public testing::Test {
  protected:
    std::string at(const std::string& name) const { return m_folder.path() + "/" + name; }
    std::string golden() const {
        std::ifstream file(VIGIL_SOURCE_DIR "/tests/golden/site/version-2.sql");
        std::ostringstream text;
        text << file.rdbuf();
        SQLite::Database(at("home"), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE).exec(text.str());
        return at("home");
    }
    static std::string linesOf(const std::string& site) {
        std::string lines;
        const auto done = exportSiteLines(site, [&](std::string_view line) {
            lines += line;
            return true;
        });
        EXPECT_TRUE(done) << (done ? "" : done.error().message);
        return lines;
    }
    static std::string refusal(const Result<Imported>& imported) {
        EXPECT_FALSE(imported);
        return imported ? "" : imported.error().message;
    }
    std::vector<std::string> names() const {
        std::vector<std::string> all;
        for (const auto& entry : std::filesystem::directory_iterator(m_folder.path()))
            all.push_back(entry.path().filename());
        std::sort(all.begin(), all.end());
        return all;
    }

    TemporaryFolder m_folder;
};

TEST_F(SiteChecks, vacuumGivesSpaceBackAndKeepsAll) {
    golden();
    {
        SQLite::Database site(at("home"), SQLite::OPEN_READWRITE);
        site.exec(
            "CREATE TABLE ballast (text TEXT); INSERT INTO ballast VALUES (zeroblob(400000)); DROP TABLE "
            "ballast");
    }
    const std::string before = linesOf(at("home"));
    EXPECT_GT(std::filesystem::file_size(at("home")), 400'000U);
    ASSERT_TRUE(vacuumSite(at("home")));
    EXPECT_LT(std::filesystem::file_size(at("home")), 100'000U);
    EXPECT_EQ(linesOf(at("home")), before);
}

TEST_F(SiteChecks, aCheckNamesWhatDoesNotHoldTogether) {
    golden();
    EXPECT_TRUE(checkSite(at("home")).value().empty());
    {
        SQLite::Database site(at("home"), SQLite::OPEN_READWRITE);
        site.exec("PRAGMA foreign_keys = OFF");
        site.exec("UPDATE plugIns SET archive = '{\"a\":'");
        site.exec("UPDATE stations SET rolling = '7' WHERE id = 3");
        site.exec("UPDATE fires SET plugIn = 9 WHERE id = 41");
    }
    EXPECT_THAT(checkSite(at("home")).value(),
                testing::ElementsAre("row 41 of fires belongs to one of plugIns that is not there",
                                     "the station \"Pönd\": its units or rolling readings are no list",
                                     "the monitor \"Frost\": no archive"));
    EXPECT_EQ(checkSite(at("nothing")).error().kind, SiteError::Kind::NotThere);
}

TEST_F(SiteChecks, aCheckFindsDamagedPages) {
    golden();
    {
        const auto site = SiteFile::open(at("home"), Access::Write);
        const RecordId station = site.value()->stationNamed("Roof").value()->id;
        for (int i = 0; i < 30; ++i)
            ASSERT_TRUE(site.value()->addPlugIn({.station = station,
                                                 .title = std::to_string(i),
                                                 .archive = "{\"a\":\"" + std::string(3000, 'a') + "\"}"}));
    }
    EXPECT_TRUE(checkSite(at("home")).value().empty());
    std::fstream file(at("home"), std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(static_cast<std::streamoff>(std::filesystem::file_size(at("home"))) - 3 * 4096);
    file.write(std::string(4096, '\xAA').data(), 4096);
    file.close();
    EXPECT_FALSE(checkSite(at("home")).value().empty());
}

TEST(JsonDepth, countsListsAndObjectsOutsideOfTexts) {
    EXPECT_EQ(jsonDepth(""), 0U);
    EXPECT_EQ(jsonDepth("1"), 0U);
    EXPECT_EQ(jsonDepth("[]"), 1U);
    EXPECT_EQ(jsonDepth(R"({"a":[{"b":1}],"c":[]})"), 3U);
    EXPECT_EQ(jsonDepth(R"(["[[[[\"[[[", "\\", [1]])"), 2U);
    EXPECT_EQ(jsonDepth("]]]["), 1U);
}

}  // namespace
}  // namespace vigil
