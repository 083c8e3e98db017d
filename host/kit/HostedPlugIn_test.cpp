#include <gmock/gmock.h>

#include "host/kit/testing/HostedBench.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;

TEST_F(HostedPlugInTest, CallsOpenTheWorldAndNothingStandsOpenAfterwards) {
    EXPECT_EQ(hosted.start(), nullptr);
    EXPECT_EQ(hosted.stop(), nullptr);
    EXPECT_THAT(plugIn->calls, ElementsAre("start on", "stop on"));
    EXPECT_EQ(hosted.call([](QRVPlugIn& called) { return called.title(); }), "Storm");
    EXPECT_EQ(World::current(), nullptr);
}

TEST_F(HostedPlugInTest, AnObstacleIsPassedOnAndLeavesThePlugInAsItWas) {
    world.plugInHost().onStart = std::make_shared<FakeObstacle>();
    EXPECT_EQ(hosted.start(), world.plugInHost().onStart);
    EXPECT_FALSE(hosted.isStarted());
}

TEST_F(HostedPlugInTest, OneThatThrowsAsItIsLoadedOrStartedIsMarkedAndStandsStopped) {
    plugIn->throwsOnLoad = plugIn->throwsOnStart = true;
    hosted.load();
    EXPECT_EQ(hosted.failure(), "no place");
    const auto obstacle = hosted.start();
    ASSERT_NE(obstacle, nullptr);
    EXPECT_EQ(obstacle->description(), "no luck");
    EXPECT_EQ(hosted.failure(), "no luck");
    EXPECT_FALSE(hosted.isStarted());
    plugIn->throwsOnStart = false;
    EXPECT_EQ(hosted.start(), nullptr);
    EXPECT_EQ(hosted.failure(), std::nullopt);
}

TEST_F(HostedPlugInTest, OneThatThrowsAsItIsStoppedCountsAsRunningAndIsMarked) {
    hosted.start();
    plugIn->throwsOnStop = true;
    const auto obstacle = hosted.stop();
    ASSERT_NE(obstacle, nullptr);
    EXPECT_EQ(obstacle->description(), "stuck");
    EXPECT_EQ(hosted.failure(), "stuck");
    EXPECT_TRUE(hosted.isStarted());
    plugIn->throwsOnStop = false;
}

TEST_F(HostedPlugInTest, TheSwitchStopsWithTheOldValueAndStartsWithTheNew) {
    hosted.start();
    plugIn->calls.clear();
    EXPECT_EQ(hosted.setEvaluating(false).value(), nullptr);
    EXPECT_THAT(plugIn->calls, ElementsAre("stop on", "set", "start off"));
    EXPECT_EQ(hosted.evaluating(), false);
    announce();
    EXPECT_EQ(plugIn->fires, 0);
    EXPECT_EQ(hosted.setEvaluating(true).value(), nullptr);
    announce();
    EXPECT_EQ(plugIn->fires, 1);
}

TEST_F(HostedPlugInTest, ASwitchThatStandsThereAlreadyIsNotTurned) {
    hosted.start();
    plugIn->calls.clear();
    EXPECT_TRUE(hosted.setEvaluating(true));
    EXPECT_TRUE(plugIn->calls.empty());
}

TEST_F(HostedPlugInTest, APlugInThatDoesNotRunIsNotStartedByItsSwitch) {
    EXPECT_TRUE(hosted.setEvaluating(false));
    EXPECT_THAT(plugIn->calls, ElementsAre("set"));
    EXPECT_FALSE(hosted.isStarted());
}

TEST_F(HostedPlugInTest, AnObstacleOfStoppingKeepsTheSwitch) {
    hosted.start();
    world.plugInHost().onStop = std::make_shared<FakeObstacle>();
    EXPECT_EQ(hosted.setEvaluating(false).value(), world.plugInHost().onStop);
    EXPECT_EQ(hosted.evaluating(), true);
    EXPECT_TRUE(hosted.isStarted());
}

TEST_F(HostedPlugInTest, APlugInWithoutASwitchIsAnError) {
    plugIn->hasSwitch = false;
    EXPECT_EQ(hosted.evaluating(), std::nullopt);
    EXPECT_FALSE(hosted.setEvaluating(true));
}

TEST_F(HostedPlugInTest, ASwitchThatCannotBeTurnedIsAnErrorAndThePlugInRunsOn) {
    plugIn->takesSwitch = false;
    hosted.start();
    EXPECT_FALSE(hosted.setEvaluating(false));
    EXPECT_TRUE(hosted.isStarted());
    announce();
    EXPECT_EQ(plugIn->fires, 1);
}

}  // namespace
}  // namespace vigil
