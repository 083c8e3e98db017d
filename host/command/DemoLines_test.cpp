#include "host/command/DemoLines.hpp"

#include <gtest/gtest.h>

namespace vigil {
namespace {

TEST(DemoBar, isEmptyAtTheLowEndAndFullAtTheHighEnd) {
    EXPECT_EQ(demoBar(0, 0, 20, 10, 4), "··│·");
    EXPECT_EQ(demoBar(20, 0, 20, 10, 4), "━━┿━");
}

TEST(DemoBar, staysInItsWidthForValuesOutside) {
    EXPECT_EQ(demoBar(-50, 0, 20, 10, 4), "··│·");
    EXPECT_EQ(demoBar(500, 0, 20, 10, 4), "━━┿━");
    EXPECT_EQ(demoBar(5, 0, 20, 99, 4), "━··│");
}

TEST(DemoLine, showsTheReadingsAndTheVerdict) {
    DemoStep step{.time = {2026, 3, 10, 9, 5, 0}, .windChill = 9.94, .windSpeed = 27.5};
    step.outcome = CycleOutcome::Fired;
    EXPECT_EQ(demoLine(step, false),
              "09:05   9.9 °C ━━━━━━━━│·······    27.5 km/h ━━━━━━━━┿·······  FIRED\n");
    step.outcome = CycleOutcome::Waiting;
    step.next = LocalTime{2026, 3, 10, 9, 35, 0};
    EXPECT_TRUE(demoLine(step, false).ends_with("  waiting until 09:35\n"));
    EXPECT_TRUE(demoLine(step, true).ends_with("\033[2mwaiting until 09:35\033[0m\n"));
}

TEST(DemoScriptLine, showsTheLastLineAndHowTheScriptEnded) {
    ScriptResult result;
    result.started = Date(0);
    result.ended = Date(0.012);
    result.outcome = ScriptResult::Succeeded;
    result.lastLines = "first\nIt feels cold\n";
    EXPECT_EQ(demoScriptLine("notify.sh", result, false),
              "      └ notify.sh wrote: It feels cold  (exit 0 after 12 ms)\n");
    result.outcome = ScriptResult::Failed;
    result.exitCode = 3;
    EXPECT_NE(demoScriptLine("notify.sh", result, false).find("exit code 3"), std::string::npos);
}

}  // namespace
}  // namespace vigil
