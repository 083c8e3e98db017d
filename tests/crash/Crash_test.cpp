#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/site/SiteFile.hpp"
#include "tests/crash/Load.hpp"
#include "tests/crash/Reported.hpp"
#include "tests/support/ConditionGenerator.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

constexpr int kMonitors = 6;
constexpr int kRounds = 25;  // on one site

std::string siteIn(const TemporaryFolder& folder) {
    const std::string path = folder.path() + "/home.vigilsite";
    EXPECT_TRUE(SiteFile::create(path));
    const auto site = SiteFile::open(path, Access::Write);
    const RecordId station = site.value()->addStation({.name = "Roof"}).value();
    for (int i = 0; i < kMonitors; ++i)
        EXPECT_TRUE(site.value()->addPlugIn(
            {.station = station, .title = "Monitor " + std::to_string(i), .archive = "0"}));
    return path;
}

/// What was under way when a process was killed, over all rounds.
struct UnderWay {
    std::size_t effects = 0;
    std::size_t fires = 0;
    std::size_t acts = 0;
};

/// Kills the load on one site again and again, each time starting from what the last one left.
void killAgainAndAgain(std::mt19937& moments, UnderWay& found) {
    const TemporaryFolder folder;
    const std::string path = siteIn(folder);
    Reported reported;
    for (int round = 0; round < kRounds; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const int moment = std::uniform_int_distribution(0, 200)(moments);
        reported.take(Load(path).killAfter(moment));
        auto opened = SiteFile::open(path, Access::Write);
        ASSERT_TRUE(opened) << opened.error().message;
        SiteFile& site = *opened.value();
        EXPECT_TRUE(site.wasChecked());
        reported.compare(site);
        const auto ledger = site.openLedger(Date(4));
        ASSERT_TRUE(ledger) << ledger.error().message;
        found.effects += ledger.value().effects.size();
        found.fires += ledger.value().fires.size();
        const auto all = site.effects({.limit = 1'000'000});
        for (const EffectRecord& effect : all.value())
            EXPECT_EQ(effect.state, EffectRecord::Ended) << effect.id;
        reported.compare(site);
        ASSERT_EQ(reported.findings(), std::vector<std::string>());
    }
    found.acts += reported.acts();
}

TEST(Crash, whatWasToldAsDurableIsThereHoweverTheProcessEnds) {
    const int sites = test::longFactor() > 1 ? 20 : 1;
    std::mt19937 moments(4711);
    UnderWay found;
    for (int site = 0; site < sites; ++site) {
        SCOPED_TRACE("site " + std::to_string(site));
        killAgainAndAgain(moments, found);
        ASSERT_FALSE(HasFatalFailure());
    }
    // Else nothing was under way at any of those moments, and nothing was shown.
    EXPECT_GT(found.effects, 0U);
    EXPECT_GT(found.fires, 0U);
    RecordProperty("acts", static_cast<int>(found.acts));
    RecordProperty("interrupted", static_cast<int>(found.effects));
    RecordProperty("open", static_cast<int>(found.fires));
}

}  // namespace
}  // namespace vigil
