#include "host/feeds/live/testing/MosquittoBroker.hpp"

namespace vigil {
namespace {

using std::chrono::milliseconds;

class FeedsTest : public LiveBench {};

int threads() {
    int count = 0;
    for ([[maybe_unused]] const auto& task : std::filesystem::directory_iterator("/proc/self/task"))
        ++count;
    return count;
}

TEST_F(FeedsTest, NothingRunsForAKindThatNoStationUses) {
    const int before = threads();
    feeds();
    EXPECT_EQ(threads(), before);
    add("Sea", "simulated:");
    EXPECT_EQ(threads(), before + 1);
    feeds().remove("Sea");
}

TEST_F(FeedsTest, AStationHasOneFeedAtATime) {
    add("Sea", "simulated:");
    const auto second = tryAdd("Sea", "simulated:");
    ASSERT_FALSE(second);
    EXPECT_EQ(second.error().message, "the station \"Sea\" has a feed");
    feeds().remove("Sea");
    EXPECT_FALSE(feeds().counts("Sea"));
    EXPECT_TRUE(tryAdd("Sea", "simulated:"));
    feeds().remove("Nobody");
}

TEST_F(FeedsTest, WhatCannotBeIsRefusedAndReachesNobody) {
    const auto refused = [this](FeedUrl url) {
        const auto sink = std::make_shared<RecordingSink>();
        const auto added = feeds().add("Home", url, sink);
        sleepFor(20);
        EXPECT_EQ(sink->count(), 0U);
        EXPECT_EQ(sink.use_count(), 1) << "it is let go";
        return added ? "" : added.error().message;
    };
    using Kind = FeedUrl::Kind;
    EXPECT_EQ(refused({.kind = Kind::Csv, .path = "x", .options = {{"speed", "fast"}}}),
              "feed: the option \"speed\" wants a number from 0 to 1e+09");
    EXPECT_EQ(refused({.kind = Kind::Csv, .path = "x", .options = {{"shift", "later"}}}),
              "feed: the option \"shift\" wants now or keep");
    EXPECT_EQ(refused({.kind = Kind::Simulated, .options = {{"seed", "-1"}}}),
              "feed: the option \"seed\" wants a whole number from 0");
    EXPECT_EQ(refused({.kind = Kind::Mqtt, .host = "localhost", .port = 1, .path = "a/#/b"}),
              "feed: \"a/#/b\" is no topic; + stands for one whole level, # for all further ones");
    EXPECT_EQ(refused({.kind = Kind::Exec}), "feed: no program; expected one, as in exec:rtl_433 -F json");
    EXPECT_NE(refused({.kind = Kind::Upload, .host = "a.example", .port = 1}), "");
    EXPECT_FALSE(feeds().counts("Home"));
}

TEST_F(FeedsTest, AllKindsTogetherStopWithinASecondAndMayBeginAgain) {
    MosquittoBroker broker(m_folder);
    broker.start();
    const std::uint16_t port = freePort();
    writeScript("stubborn.sh", "trap '' TERM\nwhile :; do echo x; sleep 0.01; done\n");
    write("log", "");
    const auto addAll = [&] {
        std::vector<std::shared_ptr<RecordingSink>> sinks;
        sinks.push_back(add("Simulated", "simulated:?speed=30000"));
        sinks.push_back(add("Lines", "lines:log"));
        sinks.push_back(add("Upload", "upload://127.0.0.1:" + std::to_string(port) + "/"));
        sinks.push_back(add("Mqtt", "mqtt://127.0.0.1:" + std::to_string(broker.port()) + "/a"));
        sinks.push_back(add("Down", "mqtt://127.0.0.1:" + std::to_string(freePort()) + "/a"));
        for (int i = 0; i < 5; ++i)
            sinks.push_back(add("Exec" + std::to_string(i), "exec:./stubborn.sh"));
        return sinks;
    };
    for (int round = 0; round < 2; ++round) {
        const auto sinks = addAll();
        for (const auto& sink : sinks)
            EXPECT_TRUE(sink->waitFor([&] { return sink->lastState().kind != FeedState::Starting; }));
        Talk open(port);
        open.send("POST /x HTTP/1.1\r\n");
        EXPECT_LT(timeOf([&] { feeds().stop(); }), kSoon);
        std::vector<std::size_t> calls;
        for (const auto& sink : sinks)
            calls.push_back(sink->calls());
        sleepFor(100);
        for (std::size_t i = 0; i < sinks.size(); ++i)
            EXPECT_EQ(sinks[i]->calls(), calls[i]);
    }
}

TEST_F(FeedsTest, CountsMayBeAskedForByOthersWhileStationsComeAndGo) {
    std::atomic<bool> ending{false};
    feeds();
    std::thread other([&] {
        while (!ending)
            feeds().counts("Sea");
    });
    for (int i = 0; i < 50; ++i) {
        const auto sink = add("Sea", "simulated:?speed=0");
        EXPECT_TRUE(sink->waitForMessages(10));
        feeds().remove("Sea");
        const auto calls = sink->calls();
        sleepFor(1);
        EXPECT_EQ(sink->calls(), calls);
    }
    ending = true;
    other.join();
}

}  // namespace
}  // namespace vigil
