#include "host/feeds/live/testing/MosquittoBroker.hpp"

// With a real broker that comes and goes.

namespace vigil {
namespace {

using std::chrono::milliseconds;
using Texts = std::vector<std::string>;

class Mqtt : public LiveBench {
  protected:
    void SetUp() override {
        LiveBench::SetUp();
        m_broker = std::make_unique<MosquittoBroker>(m_folder);
    }
    void TearDown() override {
        m_feeds.reset();
        m_broker.reset();
        LiveBench::TearDown();
    }
    std::string url(const std::string& topic) const {
        return "mqtt://127.0.0.1:" + std::to_string(m_broker->port()) + "/" + topic;
    }
    std::shared_ptr<RecordingSink> subscribe(const std::string& station, const std::string& topic) {
        const auto sink = add(station, url(topic));
        EXPECT_TRUE(sink->waitForState(FeedState::Live)) << sink->lastState().words;
        return sink;
    }

    std::unique_ptr<MosquittoBroker> m_broker;
};

TEST_F(Mqtt, BringsWhatIsPublishedToTheStationsOfItsTopic) {
    m_broker->start();
    const auto plain = subscribe("Plain", "weather/loop");
    const auto level = subscribe("Level", "weather/+/outside");
    const auto all = subscribe("All", "weather/%23");
    const auto same = subscribe("Same", "weather/loop");
    EXPECT_EQ(threadsNamed("feed-mqtt"), 1) << "one client serves them all";
    m_broker->publish("weather/loop", "{\"a\":1}");
    m_broker->publish("weather/roof/outside", "2");
    m_broker->publish("other", "3");
    m_broker->publish("weather/last", "end");
    ASSERT_TRUE(all->waitFor([&] { return !all->payloads().empty() && all->payloads().back() == "end"; }));
    EXPECT_EQ(plain->payloads(), Texts{"{\"a\":1}"});
    EXPECT_EQ(same->payloads(), Texts{"{\"a\":1}"});
    EXPECT_EQ(level->payloads(), Texts{"2"});
    EXPECT_EQ(all->payloads(), (Texts{"{\"a\":1}", "2", "end"}));
    EXPECT_EQ(all->messages()[1].route, "weather/roof/outside");
    EXPECT_FALSE(all->messages()[1].retained);
    EXPECT_EQ(feeds().counts("All")->messages, 3U);
    EXPECT_EQ(feeds().counts("All")->restarts, 0U);
}

TEST_F(Mqtt, WhatTheBrokerKeptIsMarkedAlsoForAStationThatComesLater) {
    m_broker->start();
    m_broker->publish("weather/loop", "kept", "-r");
    const auto sink = subscribe("Home", "weather/loop");
    ASSERT_TRUE(sink->waitForMessages(1));
    EXPECT_TRUE(sink->messages()[0].retained);
    m_broker->publish("weather/loop", "fresh", "-r");
    ASSERT_TRUE(sink->waitForMessages(2));
    EXPECT_FALSE(sink->messages()[1].retained);
    const auto later = subscribe("Later", "weather/loop");
    ASSERT_TRUE(later->waitForMessages(1)) << "the broker is asked again";
    EXPECT_TRUE(later->messages()[0].retained);
}

TEST_F(Mqtt, ABrokerThatIsDownAtTheStartIsFoundWhenItComes) {
    const auto sink = add("Home", url("weather/loop"));
    ASSERT_TRUE(sink->waitForState(FeedState::Retrying));
    EXPECT_EQ(sink->lastState().words, "the broker at 127.0.0.1:" + std::to_string(m_broker->port()) +
                                           ": Connection refused; tried again in 50 ms");
    m_broker->start();
    ASSERT_TRUE(sink->waitForState(FeedState::Live));
    m_broker->publish("weather/loop", "1");
    EXPECT_TRUE(sink->waitForMessages(1));
}

TEST_F(Mqtt, ABrokerThatGoesAwayIsFoundAgainAndAskedForAllTopics) {
    m_broker->start();
    const auto one = subscribe("One", "a/b");
    const auto two = subscribe("Two", "c/%23");
    for (const int signal : {SIGTERM, SIGKILL}) {
        m_broker->stop(signal);
        ASSERT_TRUE(one->waitForState(FeedState::Retrying));
        ASSERT_TRUE(two->waitForState(FeedState::Retrying));
        const auto before = processorTime();
        sleepFor(400);
        EXPECT_LT(processorTime() - before, milliseconds(120)) << "it waits between its tries";
        m_broker->start();
        ASSERT_TRUE(one->waitForState(FeedState::Live));
        ASSERT_TRUE(two->waitForState(FeedState::Live));
        m_broker->publish("a/b", "again");
        m_broker->publish("c/d", "again");
        ASSERT_TRUE(one->waitFor([&] { return one->count() == (signal == SIGTERM ? 1U : 2U); }));
        ASSERT_TRUE(two->waitFor([&] { return two->count() == (signal == SIGTERM ? 1U : 2U); }));
    }
    EXPECT_EQ(feeds().counts("One")->restarts, 2U);
}

TEST_F(Mqtt, ABrokerThatSaysNothingMoreIsGivenUp) {
    m_broker->start();
    const auto sink = subscribe("Home", "a/b");
    m_broker->freeze(true);
    ASSERT_TRUE(sink->waitForState(FeedState::Retrying)) << "it answers no ping";
    m_broker->freeze(false);
    EXPECT_TRUE(sink->waitForState(FeedState::Live));
}

TEST_F(Mqtt, AStationThatHasGoneHearsNothingAndTheOthersGoOn) {
    m_broker->start();
    const auto gone = subscribe("Gone", "a/%23");
    const auto stays = subscribe("Stays", "a/b");
    EXPECT_LT(timeOf([&] { feeds().remove("Gone"); }), kSoon);
    const auto calls = gone->calls();
    m_broker->publish("a/b", "1");
    m_broker->publish("a/c", "2");
    m_broker->publish("a/b", "3");
    ASSERT_TRUE(stays->waitForMessages(2));
    EXPECT_EQ(stays->payloads(), (Texts{"1", "3"}));
    EXPECT_EQ(gone->calls(), calls);
    EXPECT_LT(timeOf([&] { feeds().remove("Stays"); }), kSoon);
    EXPECT_EQ(threadsNamed("feed-mqtt"), 0) << "the last one takes the client with it";
}

TEST_F(Mqtt, MessagesOfAnyBytesComeWholeAndTooLongOnesAreLeftOut) {
    m_broker->start();
    const auto sink = subscribe("Home", "a/b");
    std::string bytes;
    for (int i = 0; i < 256; ++i)
        bytes += static_cast<char>(i);
    const std::string most(1 << 20, 'x');
    m_broker->publish("a/b", bytes);
    m_broker->publish("a/b", most);
    m_broker->publish("a/b", most + "x");
    m_broker->publish("a/b", "");
    ASSERT_TRUE(sink->waitForMessages(3));
    EXPECT_EQ(sink->payloads(), (Texts{bytes, most, ""}));
    EXPECT_EQ(sink->problems(), Texts{"a message of \"a/b\" of more than 1048576 bytes; left out"});
    EXPECT_EQ(feeds().counts("Home")->leftOut, 1U);
}

TEST_F(Mqtt, AFloodOfMessagesComesWholeAndInItsOrder) {
    m_broker->start();
    const auto sink = add("Home", url("a/b") + "?qos=1");
    ASSERT_TRUE(sink->waitForState(FeedState::Live));
    std::string lines;
    constexpr int kMany = 20000;
    for (int i = 0; i < kMany; ++i)
        lines += std::to_string(i) + "\n";
    write("lines", lines);
    const std::string command = "mosquitto_pub -h 127.0.0.1 -p " + std::to_string(m_broker->port()) +
                                " -q 1 -t a/b -l < " + path("lines");
    ASSERT_EQ(std::system(command.c_str()), 0);
    ASSERT_TRUE(sink->waitForMessages(kMany));
    const auto payloads = sink->payloads();
    for (std::size_t i = 0; i < payloads.size(); ++i)
        ASSERT_EQ(payloads[i], std::to_string(i));
}

TEST_F(Mqtt, AWellConnectedClientSleepsWhileNothingComes) {
    m_broker->start();
    const auto sink = subscribe("Home", "a/b");
    sleepFor(50);
    const auto before = processorTime();
    sleepFor(400);
    EXPECT_LT(processorTime() - before, milliseconds(60));
}

}  // namespace
}  // namespace vigil
