#include "host/feeds/live/UploadStations.hpp"

#include "host/feeds/live/testing/LiveBench.hpp"

namespace vigil {
namespace {

struct UploadStationsTest : testing::Test {
    std::shared_ptr<FeedOutlet> add(const std::string& name, std::optional<std::string> identity = {}) {
        auto outlet = std::make_shared<FeedOutlet>(
            FeedOutlet::Options{name, std::make_shared<RecordingSink>(), [] { return Date(); }, {}});
        EXPECT_TRUE(stations.add(outlet, std::move(identity)));
        return outlet;
    }
    std::string claim(const std::string& identity) {
        const auto outlet = stations.claim(identity);
        return outlet ? outlet->station() : "nobody";
    }

    UploadStations stations;
};

TEST_F(UploadStationsTest, AStationThatNamesAnIdentityGetsThisOneAloneInAnyCaseOfLetters) {
    add("Named", "AB12");
    EXPECT_EQ(claim("ab12"), "Named");
    EXPECT_EQ(claim("AB12"), "Named");
    EXPECT_EQ(claim("AB123"), "nobody");
    EXPECT_EQ(claim(""), "nobody");
}

TEST_F(UploadStationsTest, ASingleStationWithoutOneGetsAllThatNobodyNames) {
    add("Open");
    add("Named", "AB12");
    EXPECT_EQ(claim("x"), "Open");
    EXPECT_EQ(claim("y"), "Open");
    EXPECT_EQ(claim(""), "Open");
    EXPECT_EQ(claim("AB12"), "Named");
}

TEST_F(UploadStationsTest, SeveralWithoutOneKeepTheFirstIdentityTheyWereGiven) {
    add("First");
    const auto second = add("Second");
    EXPECT_EQ(claim("x"), "First");
    EXPECT_EQ(claim("y"), "Second");
    EXPECT_EQ(claim("x"), "First");
    EXPECT_EQ(claim("Y"), "Second");
    EXPECT_EQ(claim("z"), "nobody");
    stations.remove(*second);
    add("Third");
    EXPECT_EQ(claim("y"), "Third");
    EXPECT_EQ(claim("x"), "First");
}

TEST_F(UploadStationsTest, AStationThatWasAloneKeepsWhatItHeardWhenAnotherComes) {
    add("First");
    EXPECT_EQ(claim("x"), "First");
    EXPECT_EQ(claim("y"), "First");
    add("Second");
    EXPECT_EQ(claim("y"), "Second");
    EXPECT_EQ(claim("x"), "First");
}

TEST_F(UploadStationsTest, TwoStationsCannotNameTheSame) {
    add("Named", "AB12");
    const auto outlet = std::make_shared<FeedOutlet>(
        FeedOutlet::Options{"Other", std::make_shared<RecordingSink>(), [] { return Date(); }, {}});
    const auto added = stations.add(outlet, "ab12");
    ASSERT_FALSE(added);
    EXPECT_EQ(added.error().message, "feed: the station \"Named\" takes the uploads of this id at this port");
}

}  // namespace
}  // namespace vigil
