#include "host/run/StatusJson.hpp"

#include <gtest/gtest.h>

namespace vigil {
namespace {

SiteStatus sample() {
    SiteStatus status{.site = "/srv/home.vigilsite", .version = "1.2.3", .pid = 7};
    status.since = Date(100);
    status.now = Date(200.5);
    status.problems = {"the disk is full"};
    StationStatus station{.id = 1, .name = "Roof", .feed = "simulated:", .feedState = "live"};
    station.lastData = Date(199);
    station.notifications = 10;
    station.drops = {{"late", 2}, {"not read", 1}};
    MonitorStatus monitor{.id = 2, .title = "Gust", .active = true, .state = "waiting", .words = "waiting"};
    monitor.waitsUntil = Date(300);
    monitor.lastAction = "gust.sh roof";
    monitor.lastResult = "failed";
    monitor.lastFailed = true;
    monitor.fired = 1;
    station.monitors.push_back(monitor);
    station.monitors.push_back({.id = 3, .title = "Frost", .state = "not active"});
    status.stations.push_back(station);
    status.stations.push_back({.id = 4, .name = "Shed", .feedState = "none"});
    status.actions[{"script", "failed"}] = 3;
    return status;
}

TEST(StatusJson, AStatusComesBackAsItWasWritten) {
    const std::string text = statusJson(sample());
    const auto back = statusFromJson(text);
    ASSERT_TRUE(back) << back.error().message;
    EXPECT_EQ(statusJson(back.value()), text);
    ASSERT_EQ(back.value().stations.size(), 2u);
    EXPECT_EQ(back.value().stations[1].name, "Shed");
    EXPECT_TRUE(back.value().stations[1].monitors.empty());
    ASSERT_EQ(back.value().stations[0].monitors.size(), 2u);
    EXPECT_EQ(back.value().stations[0].monitors[1].title, "Frost");
    const MonitorStatus& monitor = back.value().stations[0].monitors[0];
    EXPECT_EQ(monitor.title, "Gust");
    EXPECT_EQ(monitor.waitsUntil, Date(300));
    EXPECT_FALSE(monitor.lastFire);
    EXPECT_EQ(back.value().stations[0].drops.at("late"), 2u);
    EXPECT_EQ(back.value().now, Date(200.5));
}

TEST(StatusJson, ATextThatIsNoUtf8IsRepaired) {
    SiteStatus status = sample();
    status.stations[0].monitors[0].lastAction = "gust\xff.sh";
    const auto back = statusFromJson(statusJson(status));
    ASSERT_TRUE(back) << back.error().message;
    EXPECT_EQ(back.value().stations[0].monitors[0].lastAction, "gust\xEF\xBF\xBD.sh");
}

TEST(StatusJson, WhatIsNoStatusIsAnError) {
    for (const char* text : {"", "{}", "[1]", "{\"site\":1}", "well"})
        EXPECT_FALSE(statusFromJson(text)) << text;
}

}  // namespace
}  // namespace vigil
