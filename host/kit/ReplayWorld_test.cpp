#include "host/kit/ReplayWorld.hpp"

#include <chrono>

#include <gtest/gtest.h>

#include "host/kit/RecordedScripts.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

class ReplayWorldTest : public testing::Test {
  protected:
    RecordingLog log;
    FakeInterfaceFiles interfaceFiles;
    ReplayWorld world{log, interfaceFiles, "/scripts"};
};

TEST_F(ReplayWorldTest, TheClockStandsUntilItIsTurned) {
    world.turnTo(Date(100));
    EXPECT_EQ(world.now(), Date(100));
    EXPECT_EQ(world.now(), Date(100));
    world.turnTo(Date(50));
    EXPECT_EQ(world.now(), Date(50));
}

TEST_F(ReplayWorldTest, WaitingTurnsTheClockForwardAndTakesNoTime) {
    world.turnTo(Date(100));
    const auto begin = std::chrono::steady_clock::now();
    world.currentRunLoop().runUntil(Date(100 + 86400));
    EXPECT_EQ(world.now(), Date(100 + 86400));
    world.currentRunLoop().runUntil(Date(5));
    EXPECT_EQ(world.now(), Date(100 + 86400));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
}

TEST_F(ReplayWorldTest, AWaitServesWhatWasPostedBeforeItTurnsTheClock) {
    world.turnTo(Date(0));
    std::vector<double> times;
    world.mainQueue().dispatchAsync([&] { times.push_back(world.now().secondsSinceReference()); });
    world.currentRunLoop().runUntil(Date(10));
    EXPECT_EQ(world.now(), Date(0));
    world.currentRunLoop().runUntil(Date(10));
    EXPECT_EQ(world.now(), Date(10));
    EXPECT_EQ(times, std::vector<double>{0});
}

TEST_F(ReplayWorldTest, TurningTheClockRunsWhatWasPosted) {
    int ran = 0;
    world.mainQueue().dispatchAsync([&] { world.mainQueue().dispatchAsync([&] { ++ran; }); });
    world.turnTo(Date(1));
    EXPECT_EQ(ran, 1);
}

TEST_F(ReplayWorldTest, HandOversRunWhereTheyAreAskedFor) {
    bool ran = false;
    EXPECT_TRUE(world.mainQueue().isMainThread());
    world.mainQueue().dispatchSync([&] { ran = true; });
    EXPECT_TRUE(ran);
}

TEST_F(ReplayWorldTest, LocalTimeIsUtcUnlessAZoneIsGiven) {
    EXPECT_EQ(world.localTime(Date(0)).hour, 0);
    ReplayWorld elsewhere(log, interfaceFiles, "", [](Date) { return LocalTime{2001, 1, 1, 13, 0, 0}; });
    EXPECT_EQ(elsewhere.localTime(Date(0)).hour, 13);
}

TEST_F(ReplayWorldTest, ScriptsAreNotedWithTheWorldsTime) {
    RecordedScripts scripts(world);
    world.turnTo(Date(7));
    ScriptRequest request;
    request.source = "echo";
    EXPECT_FALSE(scripts.accept(request, nullptr));
    ASSERT_EQ(scripts.entries().size(), 1U);
    EXPECT_EQ(scripts.entries()[0].time, Date(7));
    EXPECT_EQ(scripts.take()[0].request.source, "echo");
    EXPECT_TRUE(scripts.entries().empty());
}

}  // namespace
}  // namespace vigil
