#include <sys/stat.h>

#include "host/feeds/live/ShiftedReadings.hpp"
#include "host/feeds/live/testing/LiveBench.hpp"

namespace vigil {
namespace {

using std::chrono::milliseconds;

class Recordings : public LiveBench {
  protected:
    static Date timeOfFirst(const RawMessage& message) { return *message.ready->entries().front().time(); }
};

constexpr char kThreeMinutes[] =
    "time,outsideTemp\n2013-01-01 06:00:00,1.5\n2013-01-01 06:01:00,2.5\n2013-01-01 06:02:00,3.5\n";

TEST_F(Recordings, ASimulationShowsLifeAtOnceAndThenASecond) {
    const auto sink = add("Sea", "simulated:");
    ASSERT_TRUE(sink->waitForMessages(1));
    const auto took = timeOf([&] { ASSERT_TRUE(sink->waitForMessages(3)); });
    EXPECT_GE(took, milliseconds(1800));
    EXPECT_LT(took, milliseconds(10000));
    const RawMessage first = sink->messages()[0];
    EXPECT_TRUE(first.payload.empty());
    EXPECT_EQ(first.route, "Sea");
    EXPECT_EQ(first.ready->objectForKey("stationName")->stringValue(), "Sea");
    EXPECT_LT(std::abs(timeOfFirst(first).secondsSince(now())), 10) << "it is of now";
    EXPECT_EQ(sink->lastState().kind, FeedState::Live);
}

TEST_F(Recordings, TheSameSeedGivesTheSameWeatherFasterOrSlower) {
    const auto one = add("One", "simulated:?seed=7&speed=30000");
    const auto same = add("Same", "simulated:?seed=7&speed=60000");
    const auto other = add("Other", "simulated:?seed=8&speed=60000");
    ASSERT_TRUE(one->waitForMessages(20));
    ASSERT_TRUE(same->waitForMessages(20));
    ASSERT_TRUE(other->waitForMessages(20));
    const auto values = [](const std::shared_ptr<RecordingSink>& sink) {
        std::vector<double> all;
        for (std::size_t i = 0; i < 20; ++i)
            all.push_back(sink->messages()[i].ready->objectForKey("outsideTemp")->value());
        return all;
    };
    EXPECT_EQ(values(one), values(same));
    EXPECT_NE(values(one), values(other));
}

TEST_F(Recordings, ADatesReadingMovesWithTheTimes) {
    const auto sink = add("Sea", "simulated:?speed=0");
    ASSERT_TRUE(sink->waitForMessages(100));
    feeds().remove("Sea");
    const RawMessage message = sink->messages()[50];
    const double sunrise = message.ready->objectForKey("sunrise")->value();
    EXPECT_LT(std::abs(sunrise - now().secondsSinceReference()), 86400);
    EXPECT_EQ(message.ready->objectForKey("readingTime")->value(),
              timeOfFirst(message).secondsSinceReference());
}

TEST_F(Recordings, AFileIsReplayedSixtyTimesAsFastAndAsIfItWereNow) {
    write("log.csv", kThreeMinutes);
    const auto began = now();
    const auto sink = add("Home", "csv:log.csv");
    ASSERT_TRUE(sink->waitForState(FeedState::Ended));
    ASSERT_EQ(sink->count(), 3U);
    const double took = sink->messages()[2].arrived.secondsSince(sink->messages()[0].arrived);
    EXPECT_GT(took, 1.9);
    EXPECT_LT(took, 10) << "not the two minutes that the file tells of";
    EXPECT_EQ(sink->messages()[2].ready->objectForKey("outsideTemp")->value(), 3.5);
    for (const RawMessage& message : sink->messages()) {
        EXPECT_GE(timeOfFirst(message), began);
        EXPECT_LT(std::abs(timeOfFirst(message).secondsSince(message.arrived)), 10);
    }
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(sink->messages()[i].recorded->isoText(), "2013-01-01T06:0" + std::to_string(i) + ":00Z");
    EXPECT_EQ(sink->lastState().words, "3 notifications, no more");
}

TEST_F(Recordings, AFileMayKeepItsTimesAndGoAsFastAsItCan) {
    std::string rows = "time,outsideTemp\n";
    for (int i = 0; i < 5000; ++i)
        rows += "2013-01-01 06:" + std::to_string(i / 60 % 60) + ":" + std::to_string(i % 60) + "," +
                std::to_string(i) + "\n";
    write("log.csv", rows.substr(0, rows.find("06:59:59")) + "06:59:59,1\n");
    const auto sink = add("Home", "csv:log.csv?shift=keep&speed=1000000");
    ASSERT_TRUE(sink->waitForState(FeedState::Ended));
    EXPECT_EQ(sink->count(), 3600U);
    EXPECT_EQ(timeOfFirst(sink->messages()[0]).isoText(), "2013-01-01T06:00:00Z");
}

TEST_F(Recordings, AFullStationHoldsTheReplayBack) {
    write("log.csv", kThreeMinutes);
    auto sink = std::make_shared<RecordingSink>();
    sink->setFullAt(0);
    ASSERT_TRUE(tryAdd("Home", "csv:log.csv?speed=1000000", sink));
    sleepFor(100);
    EXPECT_EQ(sink->count(), 0U);
    sink->setFullAt(100);
    EXPECT_TRUE(sink->waitForState(FeedState::Ended));
    EXPECT_EQ(sink->count(), 3U);
}

TEST_F(Recordings, AMissingFileIsWaitedForAndABadOneIsNot) {
    const auto sink = add("Home", "csv:log.csv?speed=1000000");
    ASSERT_TRUE(sink->waitForState(FeedState::Retrying));
    EXPECT_NE(sink->lastState().words.find("log.csv"), std::string::npos);
    write("log.csv", kThreeMinutes);
    EXPECT_TRUE(sink->waitForState(FeedState::Ended));
    write("empty.csv", "");
    const auto empty = add("Empty", "csv:empty.csv");
    ASSERT_TRUE(empty->waitForState(FeedState::Failed));
    EXPECT_NE(empty->lastState().words.find("is empty"), std::string::npos) << empty->lastState().words;
}

TEST_F(Recordings, ARowThatCannotBeReadIsToldWithItsLine) {
    write("log.csv", "time,outsideTemp\n2013-01-01,1\nnonsense,2\n2013-01-02,3\n");
    const auto sink = add("Home", "csv:log.csv?speed=100000000");
    ASSERT_TRUE(sink->waitForState(FeedState::Ended));
    EXPECT_EQ(sink->count(), 2U);
    ASSERT_EQ(sink->problems().size(), 1U);
    EXPECT_TRUE(sink->problems()[0].starts_with("line 3: ")) << sink->problems()[0];
    EXPECT_EQ(feeds().counts("Home")->leftOut, 1U);
}

TEST_F(Recordings, APipeIsNoRecording) {
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    const auto sink = add("Home", "csv:pipe");
    ASSERT_TRUE(sink->waitForState(FeedState::Failed));
    EXPECT_EQ(sink->lastState().words, path("pipe") + ": is no ordinary file; a pipe is followed by lines:");
}

TEST_F(Recordings, OneThreadPacesManyStationsAndSleepsBetween) {
    std::vector<std::shared_ptr<RecordingSink>> sinks;
    for (int i = 0; i < 50; ++i)
        sinks.push_back(add("S" + std::to_string(i), "simulated:?seed=" + std::to_string(i)));
    for (const auto& sink : sinks)
        ASSERT_TRUE(sink->waitForMessages(2));
    EXPECT_EQ(threadsNamed("feed-recordings"), 1);
    EXPECT_LT(timeOf([&] { feeds().stop(); }), kSoon);
    const auto calls = sinks[0]->calls();
    const auto before = processorTime();
    sleepFor(200);
    EXPECT_EQ(sinks[0]->calls(), calls);
    EXPECT_LT(processorTime() - before, milliseconds(60));
}

TEST(ShiftedReadings, MovesTimesAndDatesAndNothingElse) {
    std::vector<AgentProperty> entries;
    entries.push_back(AgentProperty::number("a", 1.5, Date(100)));
    entries.push_back(AgentProperty::date("d", Date(50), Date(100)));
    entries.push_back(AgentProperty::text("t", "50", std::nullopt));
    const auto sunset =
        std::make_shared<const AgentPropertyLabel>(AgentPropertyLabel{"s", "Sunset", "", kDateType});
    entries.emplace_back(sunset, AgentProperty::Parts{.value = 60, .unitValue = 60, .stringValue = "18:30"});
    const auto readings = Readings::make(std::move(entries));
    const auto later = shifted(*readings, 1000);
    EXPECT_EQ(later->table(), readings->table());
    EXPECT_EQ(later->objectForKey("a")->value(), 1.5);
    EXPECT_EQ(later->objectForKey("a")->time(), Date(1100));
    EXPECT_EQ(later->objectForKey("d")->value(), 1050);
    EXPECT_EQ(later->objectForKey("d")->stringValue(), Date(1050).description());
    EXPECT_EQ(later->objectForKey("s")->stringValue(), Date(1060).description())
        << "what it was told as is over";
    EXPECT_EQ(later->objectForKey("t")->stringValue(), "50");
    EXPECT_EQ(later->objectForKey("t")->time(), std::nullopt);
    EXPECT_EQ(readings->objectForKey("a")->time(), Date(100)) << "what was published stays as it is";
}

}  // namespace
}  // namespace vigil
