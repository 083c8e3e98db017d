#include <cstdlib>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/site/SiteFile.hpp"
#include "tests/crash/Load.hpp"
#include "tests/crash/Reported.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

constexpr int kMonitors = 6;

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

TEST(Crash, whatWasToldAsDurableIsThereHoweverTheProcessEnds) {
    const int rounds = std::getenv("VIGIL_LONG") ? 500 : 25;
    const TemporaryFolder folder;
    const std::string path = siteIn(folder);
    std::mt19937 moments(4711);
    Reported reported;
    std::size_t interrupted = 0, open = 0;
    for (int round = 0; round < rounds; ++round) {
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
        interrupted += ledger.value().effects.size();
        open += ledger.value().fires.size();
        const auto all = site.effects({.limit = 1'000'000});
        for (const EffectRecord& effect : all.value())
            EXPECT_EQ(effect.state, EffectRecord::Ended) << effect.id;
        reported.compare(site);
        ASSERT_EQ(reported.findings(), std::vector<std::string>());
    }
    // Else nothing was under way at any of those moments, and nothing was shown.
    EXPECT_GT(interrupted, 0U);
    EXPECT_GT(open, 0U);
    RecordProperty("fires", static_cast<int>(reported.fires()));
    RecordProperty("acts", static_cast<int>(reported.acts()));
    RecordProperty("interrupted", static_cast<int>(interrupted));
}

}  // namespace
}  // namespace vigil
