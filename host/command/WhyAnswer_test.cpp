#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/command/GapReport.hpp"
#include "host/command/testing/HistoryService.hpp"
#include "host/site/HistoryReader.hpp"

namespace vigil {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class HistoryAnswers : public HistoryCommandBench {};

TEST_F(HistoryAnswers, saysWhyAMonitorFiredOrNot) {
    night(frost("outsideTemp.unitValue < 0 AND (windSpeed.unitValue < 2 OR soil.unitValue < 2)"));
    const Outcome last = run({"why", "--monitor", "Frost"});
    EXPECT_EQ(last.status, ExitStatus::No);
    EXPECT_THAT(last.results, AllOf(HasSubstr("Frost on Roof, by the readings of 2026-04-15 08:00:00 +0000"),
                                    HasSubstr("false  outsideTemp.unitValue < 0 "), HasSubstr("from turning"),
                                    HasSubstr("soil.unitValue < 2         is absent"),
                                    HasSubstr("It did not fire: the condition does not hold.")));
    const Outcome json = run({"replay", "--monitor", "Frost", "--json"});
    const auto fired = json.results.find("\"time\":\"");
    ASSERT_NE(fired, std::string::npos);
    const std::string time = json.results.substr(fired + 8, 20);
    const Outcome then = run({"why", "--monitor", "Frost", "--at", time});
    EXPECT_EQ(then.status, ExitStatus::Yes) << then.results;
    EXPECT_THAT(then.results, HasSubstr("It fired: the condition holds."));
    const Date behind = parseDate(time).value().plus(600);
    const Outcome waiting = run({"why", "--monitor", "Frost", "--json", "--at", behind.isoText()});
    EXPECT_EQ(waiting.status, ExitStatus::No);
    EXPECT_THAT(waiting.results, HasSubstr("\"reason\":\"waiting\",\"waitingUntil\":\"" +
                                           parseDate(time).value().plus(1800 + kBegins + kTakes).isoText()));
    EXPECT_EQ(run({"why", "--monitor", "Frost", "--at", "2020-01-01"}).status, ExitStatus::No);
}

TEST_F(HistoryAnswers, saysThatOnlyChangesCount) {
    const auto reading = [this](double value, double wind, double minutes) {
        const Date time = kEvening.plus(minutes * 60);
        return Readings::make(
            {AgentProperty::number("t", value, time), AgentProperty::number("w", wind, time)});
    };
    {
        MonitorDraft draft = frost("t.unitValue < 0 AND w.unitValue > 1", 1);
        draft.onlyOnChange = true;
        Service service(site());
        service.begin(draft, kEvening);
        for (int i = 1; i < 4; ++i)
            service.notify(kEvening.plus(i * 600), reading(-1, i, i * 10));
    }
    const Outcome last = run({"why", "--monitor", "Frost"});
    EXPECT_EQ(last.status, ExitStatus::No);
    EXPECT_THAT(last.results,
                AllOf(HasSubstr("false  t.unitValue < 0  is -1  (1 from turning, not judged, since it "
                                "had not changed)"),
                      HasSubstr("true   w.unitValue > 1  is 3"),
                      HasSubstr("the condition holds, but not on what had changed")));
}

TEST_F(HistoryAnswers, reportsTheGapBetweenTwoRuns) {
    Date down;
    {
        Service service(site());
        service.begin(frost(), kEvening);
        service.night(0, 40);
        down = service.last();
        service.end(WatchReason::Unknown);
    }
    const auto report = [this](Date now, const std::vector<FireRecord>& incomplete) {
        RecordingLog log;
        InterfaceFile files;
        const auto reader = HistoryReader::open(site()).value();
        const auto made =
            gapReport(*reader, reader->plugIns().value().at(0), "Roof", now, incomplete, log, files);
        EXPECT_TRUE(made);
        return made ? gapSentences(made.value()) : std::vector<std::string>();
    };
    const Date now = parseDate("2026-04-15 09:00").value();
    EXPECT_THAT(
        report(now, {}),
        testing::ElementsAre("Frost: not watched from " + down.description() + " to " + now.description() +
                             " (the process ended without a word). Nothing is known of that time."));
    EXPECT_THAT(report(down.plus(0.5), {{.id = 1, .plugIn = kFrost, .time = down}, {.id = 2, .plugIn = 77}}),
                testing::ElementsAre("Frost: fired at " + down.description() +
                                     ", and its actions were cut short by the end of the process."));
    {
        Service catchesUp(site());
        catchesUp.night(40, 1000, /*watched=*/false);
    }
    EXPECT_THAT(report(now, {}),
                testing::ElementsAre(HasSubstr("It would have fired at 2026-04-14 21:25:00 +0000")));
}

TEST_F(HistoryAnswers, hasNoGapForAMonitorThatWasSwitchedOff) {
    {
        Service service(site());
        service.begin(frost(), kEvening);
        service.night(0, 40);
        service.end(WatchReason::Switched);
    }
    RecordingLog log;
    InterfaceFile files;
    const auto reader = HistoryReader::open(site()).value();
    const auto made = gapReport(*reader, reader->plugIns().value().at(0), "Roof",
                                parseDate("2026-04-15 09:00").value(), {}, log, files);
    ASSERT_TRUE(made);
    EXPECT_TRUE(made.value().gaps.empty());
}

}  // namespace
}  // namespace vigil
