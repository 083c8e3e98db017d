#include "host/feeds/live/FeedOutlet.hpp"

#include "host/feeds/live/BackOff.hpp"
#include "host/feeds/live/testing/LiveBench.hpp"

namespace vigil {
namespace {

using std::chrono::milliseconds;

struct FeedOutletTest : testing::Test {
    std::shared_ptr<RecordingSink> sink = std::make_shared<RecordingSink>();
    FeedOutlet outlet{{.station = "Home",
                       .sink = sink,
                       .clock = [] { return Date(1000); },
                       .tellAgain = milliseconds(100)}};
};

TEST_F(FeedOutletTest, StampsAndCountsWhatItBrings) {
    outlet.arrivedLine("four");
    outlet.arrivedLine("sixsix");
    ASSERT_EQ(sink->messages().size(), 2U);
    EXPECT_EQ(sink->messages()[0].arrived, Date(1000));
    EXPECT_EQ(outlet.counts().messages, 2U);
    EXPECT_EQ(outlet.counts().bytes, 10U);
}

TEST_F(FeedOutletTest, TellsAStateOnlyWhenItIsAnother) {
    outlet.state(FeedState::Retrying, "no broker");
    outlet.state(FeedState::Retrying, "no broker");
    outlet.state(FeedState::Retrying, "refused");
    outlet.state(FeedState::Live);
    outlet.state(FeedState::Live);
    ASSERT_EQ(sink->states().size(), 3U);
    EXPECT_EQ(sink->states()[1].words, "refused");
    EXPECT_EQ(sink->states()[2].since, Date(1000));
}

TEST_F(FeedOutletTest, ManyProblemsOfAKindAreToldOnceInAWhileAndAllCounted) {
    using LeftOut = FeedOutlet::LeftOut;
    for (int i = 0; i < 10; ++i)
        outlet.leftOut(LeftOut::TooLong, "long");
    outlet.leftOut(LeftOut::Unclaimed, "whose?");
    EXPECT_EQ(sink->problems(), (std::vector<std::string>{"long", "whose?"}));
    sleepFor(120);
    outlet.leftOut(LeftOut::TooLong, "long");
    ASSERT_EQ(sink->problems().size(), 3U);
    EXPECT_EQ(sink->problems()[2], "long (and 9 more like it)");
    EXPECT_EQ(outlet.counts().leftOut, 11U);
    EXPECT_EQ(outlet.counts().unclaimed, 1U);
}

TEST_F(FeedOutletTest, WhatWasHeldBackIsToldWhenTheFeedIsOver) {
    for (int i = 0; i < 3; ++i)
        outlet.leftOut(FeedOutlet::LeftOut::Unusable, "line 4: a bad row");
    EXPECT_EQ(sink->problems().size(), 1U);
    outlet.state(FeedState::Ended);
    ASSERT_EQ(sink->problems().size(), 2U);
    EXPECT_EQ(sink->problems()[1], "line 4: a bad row (and 2 more like it)");
}

TEST_F(FeedOutletTest, AClosedOneReachesNobodyAndLetsTheSinkGo) {
    outlet.close();
    EXPECT_EQ(sink.use_count(), 1);
    outlet.arrivedLine("x");
    outlet.state(FeedState::Live);
    outlet.leftOut(FeedOutlet::LeftOut::Unusable, "x");
    EXPECT_FALSE(outlet.wantsPause());
    EXPECT_EQ(sink->calls(), 0U);
}

TEST(BackOff, DoublesUpToTheMostAndBeginsAgainAfterItWentWell) {
    BackOff backOff(milliseconds(1000), milliseconds(6000), milliseconds(60000));
    std::vector<int> pauses;
    for (int i = 0; i < 5; ++i)
        pauses.push_back(static_cast<int>(backOff.failedAfter(milliseconds(59999)).count()));
    EXPECT_EQ(pauses, (std::vector<int>{1000, 2000, 4000, 6000, 6000}));
    EXPECT_EQ(backOff.failedAfter(milliseconds(60000)), milliseconds(1000));
    EXPECT_EQ(backOff.failedAfter(milliseconds(0)), milliseconds(2000));
}

TEST(Words, TimesAreSaidInSecondsFromOneOnwards) {
    EXPECT_EQ(inWords(milliseconds(250)), "250 ms");
    EXPECT_EQ(inWords(milliseconds(1000)), "1 s");
    EXPECT_EQ(inWords(milliseconds(59900)), "60 s");
}

}  // namespace
}  // namespace vigil
