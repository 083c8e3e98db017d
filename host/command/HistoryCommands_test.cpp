#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/command/testing/HistoryService.hpp"

namespace vigil {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class HistoryCommands : public HistoryCommandBench {};

TEST_F(HistoryCommands, listsWhatIsStoredOfEachStation) {
    night(frost());
    const Outcome list = run({"history"});
    EXPECT_EQ(list.status, ExitStatus::Yes);
    EXPECT_THAT(list.results, AllOf(HasSubstr("Roof"), HasSubstr("169 notifications"),
                                    HasSubstr("2026-04-14 18:00:00 +0000 to 2026-04-15 08:00:00 +0000")));
    const Outcome json = run({"history", "--json"});
    EXPECT_THAT(json.results,
                testing::StartsWith(
                    "{\"station\":\"Roof\",\"notifications\":169,"
                    "\"first\":\"2026-04-14T18:00:00Z\",\"last\":\"2026-04-15T08:00:00Z\",\"bytes\":"));
}

TEST_F(HistoryCommands, printsReadingsThatReplayReadsAsTheSame) {
    night(frost());
    const Outcome lines = run({"history", "--station", "Roof", "--since", "2026-04-14T20:00"});
    EXPECT_EQ(lines.status, ExitStatus::Yes);
    std::ofstream(path("roof.jsonl")) << lines.results;
    const std::vector<std::string> condition{"--condition", "outsideTemp.unitValue < 0", "--json", "--trace"};
    std::vector<std::string> recorded{"replay", VIGIL_SOURCE_DIR "/examples/frost-night.csv"};
    std::vector<std::string> stored{"replay", path("roof.jsonl")};
    recorded.insert(recorded.end(), condition.begin(), condition.end());
    stored.insert(stored.end(), condition.begin(), condition.end());
    std::string fromCsv = run(recorded, false).results;
    std::string fromHistory = run(stored, false).results;
    for (auto at = fromHistory.find("\"station\":\"Roof\","); at != std::string::npos;
         at = fromHistory.find("\"station\":\"Roof\","))
        fromHistory.erase(at, std::string("\"station\":\"Roof\",").size());
    fromCsv.erase(0, fromCsv.find("{\"time\":\"2026-04-14T20:00:00Z\""));
    EXPECT_FALSE(fromHistory.empty());
    EXPECT_EQ(fromHistory, fromCsv);
}

TEST_F(HistoryCommands, exportsCsvAndJsonLines) {
    night(frost());
    const Outcome csv = run({"history", "export", path("roof.csv"), "--until", "2026-04-14T18:10"});
    EXPECT_EQ(csv.status, ExitStatus::Yes) << csv.errors;
    EXPECT_EQ(contents(path("roof.csv")),
              "time,\"outsideTemp [°C]\",\"outsideHumidity [%]\",\"windSpeed [m/s]\",\"barometer [hPa]\"\n"
              "2026-04-14T18:00:00Z,4.6,72,1.4,1022.5\n"
              "2026-04-14T18:05:00Z,4.5,72,1.6,1022.5\n");
    EXPECT_EQ(run({"history", "export", path("roof.jsonl")}).status, ExitStatus::Yes);
    EXPECT_EQ(contents(path("roof.jsonl")), run({"history", "--station", "Roof"}).results);
    EXPECT_EQ(run({"history", "export", path("roof.txt")}).status, ExitStatus::BadInput);
    EXPECT_FALSE(fs::exists(path("roof.txt.unfinished")));
}

TEST_F(HistoryCommands, saysWhichNamesAndTimesThereAre) {
    EXPECT_EQ(run({"history"}).status, ExitStatus::Environment);
    night(frost());
    const Outcome station = run({"history", "--station", "Barn"});
    EXPECT_EQ(station.status, ExitStatus::BadInput);
    EXPECT_THAT(station.errors, AllOf(HasSubstr("no station \"Barn\""), HasSubstr("It knows \"Roof\".")));
    const Outcome monitor = run({"why", "--monitor", "Storm"});
    EXPECT_EQ(monitor.status, ExitStatus::BadInput);
    EXPECT_THAT(monitor.errors, HasSubstr("It knows \"Frost\"."));
    const Outcome time = run({"history", "--since", "yesterdai"});
    EXPECT_EQ(time.status, ExitStatus::BadInput);
    EXPECT_THAT(time.errors, HasSubstr("--since: \"yesterdai\" is not a time"));
    const Outcome dash = run({"history", "--station", "Roof", "--since", "-300w"});
    EXPECT_EQ(dash.errors, "") << "a time that begins with a dash is no option";
    EXPECT_EQ(dash.status, ExitStatus::Yes);
}

TEST_F(HistoryCommands, replaysAgreesWithWhatFiredThen) {
    const int fires = night(frost());
    ASSERT_GT(fires, 3);
    const Outcome replay = run({"replay", "--monitor", "Frost"});
    EXPECT_EQ(replay.status, ExitStatus::Yes) << replay.results << replay.errors;
    const std::string times = std::to_string(fires) + " times";
    EXPECT_THAT(replay.results, HasSubstr("Frost fired " + times + " then and " + times +
                                          " in the replay of 169 notifications: they agree.\n"));
    // The wait counts from the end of the actions, as it did then.
    const Outcome json = run({"replay", "--monitor", "Frost", "--json"});
    EXPECT_THAT(json.results, HasSubstr("\"outcome\":\"fired\",\"next\":\"2026-04-14T21:20:41.000000Z\","
                                        "\"firedThen\":true,\"agrees\":true}"));
}

TEST_F(HistoryCommands, replaysFromTheMiddleOfAWaitAndOverEditsAndPauses) {
    int fires = 0;
    {
        Service service(site());
        service.begin(frost(), kEvening);
        service.night(0, 80);
        service.begin(frost("outsideTemp.unitValue < -1", 7), service.last().plus(1), ArchiveReason::Edited);
        service.night(80, 20);
        service.end(WatchReason::Switched);
        service.night(100, 20, /*watched=*/false);
        service.begin(frost("outsideTemp.unitValue < -1", 7), service.last().plus(1));
        service.night(120);
        fires = service.fires;
    }
    ASSERT_GT(fires, 5);
    const Outcome whole = run({"replay", "--monitor", "Frost", "--json", "--trace"});
    EXPECT_EQ(whole.status, ExitStatus::Yes) << whole.results;
    EXPECT_THAT(whole.results,
                HasSubstr("{\"notifications\":169,\"watched\":149,\"fired\":" + std::to_string(fires) +
                          ",\"replayed\":" + std::to_string(fires) + ",\"differ\":0,\"agrees\":true}"));
    EXPECT_THAT(whole.results, HasSubstr("\"outcome\":\"unwatched\""));
    // Wherever one begins, the waits from before are known.
    for (const char* since : {"2026-04-14T23:00", "2026-04-15T00:10", "2026-04-15T01:15", "2026-04-15T04:35"})
        EXPECT_EQ(run({"replay", "--monitor", "Frost", "--since", since}).status, ExitStatus::Yes) << since;
}

TEST_F(HistoryCommands, replayRefusesWhatItDoesNotObey) {
    night(frost());
    for (const char* of : {"--since", "--until", "--site"}) {
        const Outcome file = run({"replay", VIGIL_SOURCE_DIR "/examples/frost-night.csv", "--condition",
                                  "outsideTemp.unitValue < 0", of, "-3h"},
                                 /*ofSite=*/false);
        EXPECT_EQ(file.status, ExitStatus::BadInput) << of;
        EXPECT_THAT(file.errors, HasSubstr(std::string(of) + ": needs --monitor"));
    }
    const Outcome monitor = run({"replay", "--monitor", "Frost", "--retrigger", "5"});
    EXPECT_EQ(monitor.status, ExitStatus::BadInput);
    EXPECT_THAT(monitor.errors, HasSubstr("--retrigger: is for FILE and --condition"));
}

TEST_F(HistoryCommands, refusesTimesThatHoldNothing) {
    night(frost());
    const Outcome turned = run({"history", "--station", "Roof", "--since", "-1h", "--until", "-2h"});
    EXPECT_EQ(turned.status, ExitStatus::BadInput);
    EXPECT_THAT(turned.errors, HasSubstr("is not before --until"));
    const Outcome empty = run({"history", "--station", "Roof", "--until", "2020-01-01"});
    EXPECT_EQ(empty.status, ExitStatus::No);
    EXPECT_THAT(empty.errors, HasSubstr("no readings of Roof are stored of that time"));
    const Outcome future = run({"why", "--monitor", "Frost", "--at", "9999-01-01"});
    EXPECT_EQ(future.status, ExitStatus::BadInput);
    EXPECT_THAT(future.errors, HasSubstr("is yet to come"));
}

TEST_F(HistoryCommands, tellsWhereReplayAndRecordDiffer) {
    {
        Service service(site());
        service.begin(frost(), kEvening);
        service.night();
        service.writer().fired(kRoof, kFrost, service.last(), service.last(), service.last());
    }
    const Outcome replay = run({"replay", "--monitor", "Frost"});
    EXPECT_EQ(replay.status, ExitStatus::No);
    EXPECT_THAT(replay.results, AllOf(HasSubstr("(fired then)"), HasSubstr("they differ at 1.")));
}

TEST_F(HistoryCommands, drawsAMonitorAndAStation) {
    night(frost("outsideTemp.unitValue < 0 AND windSpeed.unitValue < 2"));
    const Outcome drawn = run({"plot", "--monitor", "Frost", "-o", path("frost.svg")});
    EXPECT_EQ(drawn.status, ExitStatus::Yes) << drawn.errors;
    const std::string svg = contents(path("frost.svg"));
    EXPECT_THAT(
        svg, AllOf(testing::StartsWith("<svg "), HasSubstr("&lt; 0"), HasSubstr("stroke-dasharray=\"6 4\""),
                   HasSubstr("<title>fired "), HasSubstr("condition holds"), testing::EndsWith("</svg>\n")));
    EXPECT_LT(svg.size(), 40000U);
    const Outcome station = run({"plot", "--station", "Roof", "--keys", "outsideTemp,barometer", "-o", "-"});
    EXPECT_EQ(station.status, ExitStatus::Yes) << station.errors;
    EXPECT_THAT(station.results,
                AllOf(HasSubstr("Barometer (sea level), hPa"), Not(HasSubstr("condition holds"))));
    const Outcome some = run({"plot", "--station", "Roof", "--keys", "outsideTemp,rain", "-o", "-"});
    EXPECT_EQ(some.status, ExitStatus::Yes);
    EXPECT_THAT(some.errors, HasSubstr("no reading \"rain\" is stored of that time; it is not drawn"));
    EXPECT_EQ(run({"plot", "--monitor", "Frost", "-o", path("frost.png")}).status, ExitStatus::BadInput);
    EXPECT_FALSE(fs::exists(path("frost.png")));
    const Outcome unknown = run({"plot", "--station", "Roof", "--keys", "outsideTmp", "-o", "-"});
    EXPECT_EQ(unknown.status, ExitStatus::No);
    EXPECT_THAT(unknown.errors,
                HasSubstr("no reading \"outsideTmp\" is stored of that time; there are barometer"));
}

TEST_F(HistoryCommands, drawsATextAndADateAsBlocks) {
    {
        Service service(site());
        for (int i = 0; i < 10; ++i)
            service.notify(
                kEvening.plus(i * 60),
                Readings::make({AgentProperty::text("windDirText", i < 5 ? "NNW" : "ESE", kEvening),
                                AgentProperty::date("sunrise", Date(794826000), kEvening)}),
                /*watched=*/false);
    }
    const Outcome drawn = run({"plot", "--station", "Roof", "--keys", "windDirText,sunrise", "-o", "-"});
    EXPECT_EQ(drawn.status, ExitStatus::Yes) << drawn.errors;
    EXPECT_THAT(drawn.results, AllOf(HasSubstr("NNW"), HasSubstr("ESE"), HasSubstr("2026 ")));
    EXPECT_THAT(drawn.results, Not(HasSubstr("stroke-width=\"1.6\""))) << "no line of numbers";
}

}  // namespace
}  // namespace vigil
