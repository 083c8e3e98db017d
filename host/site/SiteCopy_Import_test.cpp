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

class SiteImports : public testing::Test {
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

TEST_F(SiteImports, eitherFormComesBackAsTheSameSite) {
    const std::string lines = linesOf(golden());
    m_folder.write("lines", lines);
    ASSERT_TRUE(exportSite(at("home"), at("copy"), false));
    for (const char* from : {"lines", "copy"}) {
        const std::string to = at(std::string("from-") + from);
        const auto imported = importSite(at(from), to, /*replace=*/false);
        ASSERT_TRUE(imported) << imported.error().message;
        EXPECT_EQ(imported.value().stations, 2U);
        EXPECT_EQ(imported.value().plugIns, 1U);
        EXPECT_EQ(linesOf(to), lines);
        const auto site = SiteFile::open(to, Access::Write);
        ASSERT_TRUE(site) << site.error().message;
        EXPECT_EQ(site.value()->addStation({.name = "New"}).value(), 4) << "no number is given twice";
    }
}

TEST_F(SiteImports, anImportReplacesASiteOnlyWhereItMay) {
    m_folder.write("lines", linesOf(golden()));
    ASSERT_TRUE(SiteFile::create(at("site")));
    {
        const auto site = SiteFile::open(at("site"), Access::Write);
        ASSERT_TRUE(site.value()->addStation({.name = "Old"}));
    }
    const std::string before = linesOf(at("site"));
    EXPECT_EQ(refusal(importSite(at("lines"), at("site"), false)),
              at("site") + ": is there already, and was left as it is");
    EXPECT_EQ(linesOf(at("site")), before);
    ASSERT_TRUE(importSite(at("lines"), at("site"), true));
    EXPECT_EQ(linesOf(at("site")), linesOf(at("home")));
}

TEST_F(SiteImports, aRunningSiteIsNotReplaced) {
    m_folder.write("lines", linesOf(golden()));
    ASSERT_TRUE(SiteFile::create(at("site")));
    const auto running = SiteFile::open(at("site"), Access::Write);
    EXPECT_THAT(refusal(importSite(at("lines"), at("site"), true)), HasSubstr("runs this site"));
    EXPECT_EQ(vacuumSite(at("site")).error().kind, SiteError::Kind::Locked);
}

TEST_F(SiteImports, whatCannotBeReadIsNamedWithItsLineAndTheOldSiteStays) {
    const std::string good = linesOf(golden());
    ASSERT_TRUE(SiteFile::create(at("site")));
    const std::string before = linesOf(at("site"));
    const auto tried = [&](const std::string& text) {
        m_folder.write("lines", text);
        std::string message = refusal(importSite(at("lines"), at("site"), true));
        EXPECT_EQ(linesOf(at("site")), before);
        EXPECT_THAT(message, StartsWith(at("lines") + ": "));
        return message.substr(std::min(message.size(), at("lines").size() + 2));
    };
    EXPECT_THAT(tried(good + "{\"fire\":{\"id\":9}}\n"), StartsWith("line 10: "));
    EXPECT_THAT(tried(good + "nonsense\n"), StartsWith("line 10: "));
    EXPECT_THAT(tried(good + "[]\n"), StartsWith("line 10: expected an object of one row"));
    EXPECT_EQ(tried(good + "{\"song\":{}}\n"), "line 10: \"song\" is no row of a site");
    EXPECT_EQ(tried(good + std::string(5000, '[') + "\n"),
              "line 10: lists inside lists, deeper than any archive");
    EXPECT_THAT(tried(good + "{\"fire\":{\"id\":9,\"plugIn\":77,\"time\":0.5,\"completed\":true}}\n"),
                HasSubstr("FOREIGN KEY"));
    EXPECT_THAT(tried("{\"format\":\"vigil-site\",\"version\":2}\n"), StartsWith("line 1: "));
    EXPECT_THAT(tried("SQLite format 3"), HasSubstr("it is no database"));
    EXPECT_THAT(tried(""), HasSubstr("is neither"));
    EXPECT_THAT(refusal(importSite(at("nothing"), at("site"), true)), StartsWith(at("nothing")));
    EXPECT_THAT(names(), testing::ElementsAre("home", "lines", "site", "site-lock"));
}

TEST_F(SiteImports, aDamagedOrForeignDatabaseIsNoCopy) {
    {
        SQLite::Database(at("songs"), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE)
            .exec("CREATE TABLE songs (a)");
    }
    EXPECT_THAT(refusal(importSite(at("songs"), at("site"), false)),
                StartsWith(at("songs") + ": this is no site"));
    golden();
    {
        SQLite::Database damaged(at("home"), SQLite::OPEN_READWRITE);
        damaged.exec("UPDATE plugIns SET archive = '[1]'");
    }
    EXPECT_EQ(refusal(importSite(at("home"), at("site"), false)),
              at("home") + ": is damaged: the monitor \"Frost\": no archive");
    EXPECT_FALSE(std::filesystem::exists(at("site")));
}

constexpr const char* kMonitors =
    R"({"format":"vigil-monitors","version":1,"monitors":[)"
    R"({"title":"A","station":"Roof","archive":{"format":"vigil-archive","version":1,"root":{"$class":"M","x":1.0}}},)"
    R"({"title":"B","station":"Shed","archive":{"format":"vigil-archive","version":1,"root":{"$class":"M"}}}]})";

TEST_F(SiteImports, monitorsOfBeforeAreAddedToASiteOrMakeOne) {
    m_folder.write("monitors", kMonitors);
    golden();
    for (const char* to : {"home", "fresh"}) {
        const auto imported = importSite(at("monitors"), at(to), /*replace=*/false);
        ASSERT_TRUE(imported) << imported.error().message;
        EXPECT_EQ(imported.value().form, Imported::Form::Monitors);
        EXPECT_EQ(imported.value().plugIns, 2U);
        const auto site = SiteFile::open(at(to), Access::Read);
        const auto a = site.value()->plugInTitled("A").value();
        ASSERT_TRUE(a);
        EXPECT_EQ(a->className, "M");
        EXPECT_THAT(a->archive, HasSubstr("\"x\": 1.0"));
        EXPECT_EQ(a->station, site.value()->stationNamed("Roof").value()->id);
        EXPECT_EQ(site.value()->stationNamed("Shed").value()->feed, "");
    }
    EXPECT_EQ(SiteFile::open(at("home"), Access::Read).value()->stations().value().size(), 3U);
    EXPECT_EQ(SiteFile::open(at("home"), Access::Read).value()->effects().value().size(), 3U);
    const std::string before = linesOf(at("home"));
    EXPECT_EQ(refusal(importSite(at("monitors"), at("home"), true)),
              at("monitors") + ": a monitor is called \"A\" already");
    EXPECT_EQ(linesOf(at("home")), before);
}

TEST_F(SiteImports, monitorsThatAreNotUnderstoodAreNamedWithTheirPlace) {
    const auto tried = [&](const std::string& text) {
        m_folder.write("monitors", text);
        return refusal(importSite(at("monitors"), at("site"), false)).substr(at("monitors").size() + 2);
    };
    EXPECT_EQ(tried("{}"), "is neither a copy of a site nor a file of monitors");
    EXPECT_EQ(tried(R"({"format":"vigil-monitors","version":2,"monitors":[]})"),
              "is of a version that this program does not know");
    EXPECT_EQ(tried(R"({"format":"vigil-monitors","version":1})"), "has no list of monitors");
    EXPECT_EQ(tried(R"({"format":"vigil-monitors","version":1,"monitors":[{"title":"A"}]})"),
              "monitors[0] is no monitor");
    EXPECT_EQ(
        tried(
            R"({"format":"vigil-monitors","version":1,"monitors":[{"station":"S","archive":{"root":{}}}]})"),
        "monitors[0] has no title of its own");
    EXPECT_EQ(
        tried(R"({"format":"vigil-monitors","version":1,"monitors":[{"title":"A","archive":{"root":{}}}]})"),
        "monitors[0] has no station");
    EXPECT_EQ(tried(std::string(4000, '[')), "lists inside lists, deeper than any archive");
    EXPECT_FALSE(std::filesystem::exists(at("site")));
}

}  // namespace
}  // namespace vigil
