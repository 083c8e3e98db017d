#include "host/command/StatusTable.hpp"

#include <gmock/gmock.h>

namespace vigil {
namespace {

using testing::HasSubstr;
using testing::Not;

SiteStatus sample() {
    SiteStatus status{.site = "home.vigilsite", .version = "1", .pid = 7};
    status.since = Date(0);
    status.now = Date(7300);
    StationStatus roof{.id = 1, .name = "Röof"};
    roof.feedState = "live";
    roof.lastData = Date(7290);
    roof.notifications = 12;
    roof.monitors.push_back(
        {.id = 1, .title = "Gust", .active = true, .state = "watching", .words = "watching"});
    roof.monitors.push_back(
        {.id = 2, .title = "Frost and ice", .active = true, .state = "failed", .words = "stopped: oh no"});
    status.stations.push_back(roof);
    return status;
}

TEST(StatusTable, NamesStandBelowEachOtherAlsoWhereCharactersHaveSeveralBytes) {
    const std::string text = statusTable(sample(), false);
    EXPECT_THAT(text, HasSubstr("home.vigilsite, run by process 7 for 2 h\n"));
    EXPECT_THAT(text, HasSubstr("Röof  live  data 10 s old  12 notifications\n"));
    EXPECT_THAT(text, HasSubstr("  ✓  Gust           watching"));
    EXPECT_THAT(text, HasSubstr("  !  Frost and ice  stopped: oh no"));
}

TEST(StatusTable, ColourIsNeverTheOnlySign) {
    const std::string plain = statusTable(sample(), false);
    EXPECT_THAT(plain, Not(HasSubstr("\x1b")));
    std::string coloured = statusTable(sample(), true);
    EXPECT_THAT(coloured, HasSubstr("\x1b[31m"));
    for (std::size_t at; (at = coloured.find('\x1b')) != std::string::npos;)
        coloured.erase(at, coloured.find('m', at) - at + 1);
    EXPECT_EQ(coloured, plain);
}

TEST(StatusTable, OldDataAndDeadFeedsArePointedOut) {
    SiteStatus status = sample();
    status.stations[0].lastData = Date(7300 - 3600);
    status.stations[0].feedState = "retrying";
    status.stations[0].feedWords = "no route to host";
    const std::string text = statusTable(status, false);
    EXPECT_THAT(text, HasSubstr("! retrying: no route to host"));
    EXPECT_THAT(text, HasSubstr("! data 60 min old"));
}

TEST(StatusTable, ASiteThatNothingRunsSaysHowToStartIt) {
    SiteStatus status{.site = "home.vigilsite"};
    EXPECT_THAT(statusTable(status, false), HasSubstr("not running: start it with `vigil run`"));
    EXPECT_THAT(statusTable(status, false), HasSubstr("vigil station create"));
}

}  // namespace
}  // namespace vigil
