#include "host/run/Metrics.hpp"

#include <set>
#include <sstream>

#include <gmock/gmock.h>

namespace vigil {
namespace {

using testing::HasSubstr;

SiteStatus sample() {
    SiteStatus status{.site = "home.vigilsite", .version = "1.2.3", .pid = 7};
    status.since = Date::fromUnix(1000);
    status.now = Date::fromUnix(1100);
    StationStatus station{.id = 1, .name = "Roof \"north\"\\\n"};
    station.feedState = "live";
    station.lastData = Date::fromUnix(1090);
    station.messages = 12;
    station.notifications = 10;
    station.drops = {{"late", 2}};
    MonitorStatus monitor{.id = 2, .title = "Gust", .active = true, .state = "watching"};
    monitor.missed = 9;
    monitor.fired = 1;
    station.monitors.push_back(monitor);
    status.stations.push_back(station);
    status.actions[{"script", "failed"}] = 3;
    Histogram histogram;
    histogram.add(2e-6);
    histogram.add(100);
    status.judged = histogram.counts();
    return status;
}

TEST(Metrics, TellWhatTheStatusTells) {
    const std::string text = metricsText(sample());
    EXPECT_THAT(text, HasSubstr("vigil_info{version=\"1.2.3\"} 1\n"));
    EXPECT_THAT(text, HasSubstr("vigil_messages_total{station=\"Roof \\\"north\\\"\\\\\\n\"} 12\n"));
    EXPECT_THAT(text, HasSubstr(",why=\"late\"} 2\n"));
    EXPECT_THAT(text, HasSubstr("monitor=\"Gust\",outcome=\"fired\"} 1\n"));
    EXPECT_THAT(text, HasSubstr("vigil_data_age_seconds{station=\"Roof \\\"north\\\"\\\\\\n\"} 10\n"));
    EXPECT_THAT(text, HasSubstr("vigil_actions_total{kind=\"script\",result=\"failed\"} 3\n"));
    EXPECT_THAT(text, HasSubstr("vigil_start_time_seconds 1000.000\n"));
}

TEST(Metrics, BucketsOfAHistogramAddUp) {
    const std::string text = metricsText(sample());
    EXPECT_THAT(text, HasSubstr("vigil_cycle_seconds_bucket{le=\"1e-06\"} 0\n"));
    EXPECT_THAT(text, HasSubstr("vigil_cycle_seconds_bucket{le=\"3.16e-06\"} 1\n"));
    EXPECT_THAT(text, HasSubstr("vigil_cycle_seconds_bucket{le=\"10\"} 1\n"));
    EXPECT_THAT(text, HasSubstr("vigil_cycle_seconds_bucket{le=\"+Inf\"} 2\n"));
    EXPECT_THAT(text, HasSubstr("vigil_cycle_seconds_count 2\n"));
}

TEST(Metrics, EverySampleStandsBelowItsHelpAndTypeAndOnlyThere) {
    std::istringstream text(metricsText(sample()));
    std::string line, family;
    std::set<std::string> families;
    while (std::getline(text, line)) {
        if (line.starts_with("# HELP ")) {
            family = line.substr(7, line.find(' ', 7) - 7);
            EXPECT_TRUE(families.insert(family).second) << family << " stands twice";
        } else if (!line.starts_with("# TYPE " + family + " ")) {
            EXPECT_TRUE(line.starts_with(family)) << line << " below " << family;
        }
    }
    EXPECT_GT(families.size(), 20u);
}

}  // namespace
}  // namespace vigil
