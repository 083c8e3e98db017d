#include "host/desktop/ChartHistory.hpp"

#include <algorithm>

#include <gtest/gtest.h>

#include "host/site/HistoryWriter.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil::test {
namespace {

constexpr RecordId kRoof = 1;
constexpr RecordId kFrost = 7;
const Date kStart(794826000);

class ChartHistory : public testing::Test {
  protected:
    static Date minute(int i) { return kStart.plus(i * 60.0); }
    void write(int minutes) {
        const auto writer = HistoryWriter::open(site);
        ASSERT_TRUE(writer) << writer.error().message;
        for (int i = 0; i < minutes; ++i)
            writer.value()->append(
                kRoof, std::nullopt, minute(i),
                Readings::make({AgentProperty::number("windChill", i, minute(i)),
                                AgentProperty::text("sky", i % 2 ? "Fog" : "Rain", minute(i)),
                                AgentProperty::number("windSpeed", -i, minute(i))}));
    }
    ChartQuery query(std::vector<std::string> keys) const {
        return {
            .siteFile = site, .station = kRoof, .monitor = kFrost, .keys = std::move(keys), .since = kStart};
    }
    static bool goOn(double) { return true; }

    TemporaryFolder folder;
    const std::string site = folder.path() + "/home.vigilsite";
};

TEST_F(ChartHistory, GivesTheColumnsThatAreAskedForAndTheTextsOfSome) {
    write(4);
    ChartQuery asked = query({"windSpeed", "sky", "nowhere"});
    asked.texts = {"sky"};
    const ChartRows rows = readChart(asked, goOn);
    EXPECT_EQ(rows.trouble, "");
    EXPECT_EQ(rows.columns.rows(), 4u);
    EXPECT_EQ(rows.columns.column("windChill"), nullptr);
    EXPECT_EQ(rows.columns.column("windSpeed")->unitValue, (std::vector<double>{0, -1, -2, -3}));
    EXPECT_FALSE(rows.columns.column("windSpeed")->hasTexts);
    EXPECT_EQ(rows.columns.column("sky")->texts, (std::vector<std::string>{"Rain", "Fog"}));
    EXPECT_EQ(rows.columns.column("nowhere")->there, std::vector<std::uint8_t>(4, 0));
}

TEST_F(ChartHistory, BeginsWithAMomentOrBehindIt) {
    write(5);
    ChartQuery asked = query({"windChill"});
    asked.since = minute(3);
    EXPECT_EQ(readChart(asked, goOn).columns.column("windChill")->value, (std::vector<double>{3, 4}));
    asked.itself = false;
    EXPECT_EQ(readChart(asked, goOn).columns.column("windChill")->value, (std::vector<double>{4}));
}

TEST_F(ChartHistory, TellsOfALongReadingAndEndsItWhenItIsTold) {
    constexpr std::size_t kMinutes = 2000;
    write(kMinutes);
    ChartQuery asked = query({"windChill"});
    asked.now = minute(kMinutes);
    asked.toldAfter = asked.toldEvery = 0;
    std::vector<double> shares;
    const ChartRows all = readChart(asked, [&](double share) {
        shares.push_back(share);
        return true;
    });
    EXPECT_EQ(all.columns.rows(), kMinutes);
    ASSERT_GT(shares.size(), 3u);
    EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
    EXPECT_GT(shares.front(), 0);
    EXPECT_LT(shares.front(), 0.3);
    EXPECT_GT(shares.back(), 0.7);
    EXPECT_LE(shares.back(), 1);
    const ChartRows some = readChart(asked, [](double share) { return share < 0.5; });
    EXPECT_GT(some.columns.rows(), kMinutes / 3);
    EXPECT_LT(some.columns.rows(), kMinutes * 3 / 4);
}

TEST_F(ChartHistory, SaysWhyThereIsNothing) {
    const ChartRows rows = readChart(query({"windChill"}), goOn);
    EXPECT_NE(rows.trouble, "");
    EXPECT_EQ(rows.columns.rows(), 0u);
}

}  // namespace
}  // namespace vigil::test
