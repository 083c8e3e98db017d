#include "host/kit/Station.hpp"

#include <future>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/kit/RecordedScripts.hpp"
#include "host_contract/QRVKit.hpp"
#include "host_contract/QRVPlugIn.hpp"
#include "platform/CallNote.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Pair;

/// A plug-in that does what a test says whenever its station has news.
class Listener : public QRVPlugIn {
  public:
    std::string className() const override { return "StationTestListener"; }
    void heard(const Notification& notification) { onData(notification); }
    std::function<void(const Notification&)> onData = [](const Notification&) {};
};

class StationTest : public testing::Test {
  protected:
    std::shared_ptr<Listener> listener(const std::string& title) {
        auto made = makePlugIn<Listener>(station, nullptr);
        made->setTitle(title);
        world.notificationCenter().addObserver(made, &Listener::heard, kAppRealTimeDataNotification, station);
        return made;
    }

    static std::shared_ptr<const Readings> batch(double value) {
        return Readings::make({AgentProperty::number("windSpeed", value, std::nullopt)});
    }

    FakeWorld world{FakeMainQueue::Form::Threaded};
    RecordedScripts scripts{world};
    std::shared_ptr<Station> station = std::make_shared<Station>(world, "roof", scripts);
};

TEST_F(StationTest, ANewStationHasNoReadings) {
    EXPECT_EQ(station->properties()->entries().size(), 0U);
    EXPECT_EQ(station->className(), "Station");
}

TEST_F(StationTest, AnAnnouncementReachesTheObserversWithTheWorldOpenAndTheBatchAsItIs) {
    const auto news = batch(4);
    const auto plugIn = listener("Storm");
    int calls = 0;
    plugIn->onData = [&](const Notification& notification) {
        ++calls;
        EXPECT_EQ(notification.userInfoForKey(kDataKey), news);
        EXPECT_EQ(notification.object, station);
        EXPECT_EQ(World::current(), &world);
        EXPECT_EQ(CallNote::current(), plugIn);
        EXPECT_EQ(station->properties()->objectForKey("windSpeed")->value(), 4);
    };
    EXPECT_TRUE(station->announce(news).empty());
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(World::current(), nullptr);
}

TEST_F(StationTest, FailuresOfObserversAreGivenAndTheOthersStillHear) {
    const auto bad = listener("Bad");
    const auto good = listener("Good");
    int calls = 0;
    bad->onData = [](const Notification&) { throw std::out_of_range("row 3"); };
    good->onData = [&](const Notification&) { ++calls; };
    const auto failures = station->announce(batch(1));
    ASSERT_EQ(failures.size(), 1U);
    EXPECT_EQ(failures[0].observer, bad);
    EXPECT_THROW(std::rethrow_exception(failures[0].what), std::out_of_range);
    EXPECT_EQ(calls, 1);
}

TEST_F(StationTest, ASecondAnnouncementMeanwhileIsABrokenPromise) {
    const auto plugIn = listener("Storm");
    bool threw = false;
    plugIn->onData = [&](const Notification&) {
        try {
            const auto failures = station->announce(batch(2));
        } catch (const std::logic_error&) {
            threw = true;
        }
    };
    EXPECT_TRUE(station->announce(batch(1)).empty());
    EXPECT_TRUE(threw);
    plugIn->onData = [](const Notification&) {};
    EXPECT_TRUE(station->announce(batch(3)).empty());
    EXPECT_EQ(station->properties()->objectForKey("windSpeed")->value(), 3);
}

TEST_F(StationTest, ReadersOnOtherThreadsSeeWholeBatches) {
    std::atomic<bool> ended{false};
    auto reader = std::async(std::launch::async, [&] {
        while (!ended) {
            const auto now = station->properties();
            const AgentProperty* a = now->objectForKey("a");
            const AgentProperty* b = now->objectForKey("b");
            if (a && (!b || a->value() != b->value())) return false;
        }
        return true;
    });
    for (int i = 0; i < 500; ++i) {
        const double value = i;
        EXPECT_TRUE(station
                        ->announce(Readings::make({AgentProperty::number("a", value, std::nullopt),
                                                   AgentProperty::number("b", value, std::nullopt)}))
                        .empty());
    }
    ended = true;
    EXPECT_TRUE(reader.get());
}

TEST_F(StationTest, KeysBeyondTheBoundAreDroppedAndCounted) {
    std::vector<AgentProperty> many;
    for (std::size_t i = 0; i < kStationKeys + 3; ++i)
        many.push_back(AgentProperty::number("k" + std::to_string(i), 1, std::nullopt));
    EXPECT_TRUE(station->announce(Readings::make(many)).empty());
    EXPECT_EQ(station->properties()->entries().size(), kStationKeys);
    EXPECT_EQ(station->droppedReadings(), 3U);
}

TEST_F(StationTest, TheSiteNameIsTheOneSetElseTheStationsOwn) {
    EXPECT_EQ(station->siteName()->stringValue(), "roof");
    station->setSiteName("Home, roof");
    EXPECT_EQ(station->siteName()->stringValue(), "Home, roof");
}

TEST_F(StationTest, AScriptIsHandedOverWithItsReadingsItsSiteAndWhomItRunsFor) {
    station->setSiteName("Home");
    EXPECT_TRUE(station->announce(batch(12.5)).empty());
    const auto plugIn = listener("Storm");
    const CallNote::Scope note(plugIn);
    std::optional<Error> error;
    EXPECT_EQ(station->runScript("echo hi", {"a", ""}, nullptr, std::nullopt, 60, error), nullptr);
    EXPECT_FALSE(error);
    ASSERT_EQ(scripts.entries().size(), 1U);
    const auto& [time, request, owner] = scripts.entries()[0];
    EXPECT_EQ(time, world.now());
    EXPECT_EQ(owner, plugIn);
    EXPECT_EQ(request.source, "echo hi");
    EXPECT_EQ(request.arguments, (std::vector<std::string>{"a", ""}));
    EXPECT_EQ(request.timeoutSeconds, 60);
    EXPECT_EQ(request.station, "roof");
    EXPECT_EQ(request.monitor, "Storm");
    EXPECT_THAT(request.environment, Contains(Pair("VIGIL_SITE", "Home")));
    EXPECT_THAT(request.environment, Contains(Pair("VIGIL_MONITOR", "Storm")));
    EXPECT_THAT(request.environment, Contains(Pair("VIGIL_windSpeed", "12.5")));
}

TEST_F(StationTest, AScriptThatCannotBeHandedOverLeavesAnError) {
    std::optional<Error> error;
    station->runScript("echo", {}, nullptr, "/tmp", 60, error);
    ASSERT_TRUE(error);
    EXPECT_THAT(error->message, HasSubstr("folder"));
    error.reset();
    station->runScript("echo", {}, nullptr, std::nullopt, 0, error);
    EXPECT_TRUE(error);
    EXPECT_TRUE(scripts.entries().empty());
}

/// Notes on which thread it ended.
class Mortal : public Object {
  public:
    explicit Mortal(std::function<void()> onEnd) : m_onEnd(std::move(onEnd)) {}
    ~Mortal() override { m_onEnd(); }
    std::string className() const override { return "StationTestMortal"; }

  private:
    std::function<void()> m_onEnd;
};

TEST_F(StationTest, WhatIsRetiredDuringAnAnnouncementEndsAfterItOnTheMainThread) {
    std::atomic<bool> ended{false}, endedOnMain{false};
    auto mortal = std::make_shared<Mortal>([&] {
        endedOnMain = world.mainQueue().isMainThread();
        ended = true;
    });
    const auto plugIn = listener("Storm");
    plugIn->onData = [&](const Notification&) {
        world.mainQueue().dispatchSync([&] { station->retire(std::move(mortal)); });
        EXPECT_FALSE(ended);
    };
    EXPECT_TRUE(station->announce(batch(1)).empty());
    world.mainQueue().runPosted();
    EXPECT_TRUE(ended);
    EXPECT_TRUE(endedOnMain);
}

TEST_F(StationTest, WhatIsRetiredInBetweenEndsAtOnce) {
    bool ended = false;
    station->retire(std::make_shared<Mortal>([&] { ended = true; }));
    EXPECT_TRUE(ended);
}

}  // namespace
}  // namespace vigil
