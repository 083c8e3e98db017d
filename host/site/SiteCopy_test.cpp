#include "host/site/SiteCopy.hpp"

#include <filesystem>
#include <fstream>
#include <sstream>

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/site/SiteWriter.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class SiteCopies : public testing::Test {
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

TEST_F(SiteCopies, aCopyIsOneFileThatHoldsTheSameAlsoWhileTheSiteIsWrittenTo) {
    const std::string home = golden();
    const auto running = SiteFile::open(home, Access::Write);
    SiteWriter writer(*running.value());
    writer.putEffect({.id = writer.newId(), .title = "late"});
    writer.stop();
    ASSERT_TRUE(exportSite(home, at("copy"), /*replace=*/false));
    EXPECT_EQ(linesOf(at("copy")), linesOf(home));
    EXPECT_THAT(linesOf(at("copy")), HasSubstr("late"));
    EXPECT_FALSE(std::filesystem::exists(at("copy-wal")));
    const auto copy = SiteFile::open(at("copy"), Access::Write);
    EXPECT_FALSE(copy.value()->wasChecked());
}

TEST_F(SiteCopies, aCopyTakesNoOtherFilesPlaceUnlessItMay) {
    const std::string home = golden();
    m_folder.write("copy", "precious");
    const auto refused = exportSite(home, at("copy"), /*replace=*/false);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().message, at("copy") + ": is there already, and was left as it is");
    EXPECT_EQ(std::filesystem::file_size(at("copy")), 8U);
    EXPECT_THAT(names(), testing::ElementsAre("copy", "home"));
    ASSERT_TRUE(exportSite(home, at("copy"), /*replace=*/true));
    EXPECT_EQ(linesOf(at("copy")), linesOf(home));
}

TEST_F(SiteCopies, linesReadAsTheyAreDocumented) {
    EXPECT_EQ(
        linesOf(golden()),
        "{\"format\":\"vigil-site\",\"version\":1,\"highestId\":45,"
        "\"identity\":\"0123456789abcdef0123456789abcdef\"}\n"
        "{\"station\":{\"id\":1,\"name\":\"Roof\",\"feed\":\"upload://127.0.0.1:8090/\",\"usUnits\":true,"
        "\"units\":[[\"windSpeed\",\"kn\"],[\"barometer\",\"hPa\"]],\"rolling\":[\"windSpeed mean 10\"]}}\n"
        "{\"station\":{\"id\":3,\"name\":\"Pönd\",\"feed\":\"\",\"usUnits\":false,\"units\":[],\"rolling\":[]"
        "}}\n"
        "{\"plugIn\":{\"id\":2,\"station\":1,\"className\":\"QRVVigilPlugIn\",\"title\":\"Frost\","
        "\"edition\":3,"
        "\"archive\":{\"format\":\"vigil-archive\",\"version\":1,\"root\":null}}}\n"
        "{\"fire\":{\"id\":41,\"plugIn\":2,\"time\":815000000.125,\"completed\":true}}\n"
        "{\"fire\":{\"id\":43,\"plugIn\":2,\"time\":815000060.25,\"completed\":false}}\n"
        "{\"effect\":{\"id\":42,\"fire\":41,\"plugIn\":2,\"station\":\"Roof\",\"title\":\"Frost\",\"kind\":"
        "\"script\",\"what\":\"gust.sh "
        "roof\",\"state\":\"ended\",\"queued\":815000000.25,\"started\":815000000.5,"
        "\"ended\":815000001.0,\"result\":\"succeeded\",\"detail\":\"exit status 0\"}}\n"
        "{\"effect\":{\"id\":44,\"fire\":43,\"plugIn\":2,\"station\":\"Roof\",\"title\":\"Frost\",\"kind\":"
        "\"mail\",\"what\":\"to ann\",\"state\":\"started\",\"queued\":815000060.5,\"started\":815000060.75,"
        "\"result\":\"\",\"detail\":\"\"}}\n"
        "{\"effect\":{\"id\":45,\"station\":\"\",\"title\":\"\",\"kind\":\"speech\",\"what\":\"It freezes\","
        "\"state\":\"queued\",\"queued\":815000061.0,\"result\":\"\",\"detail\":\"\"}}\n");
}

}  // namespace
}  // namespace vigil
