#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/command/CommandLine.hpp"
#include "host/command/CycleNote.hpp"
#include "host/command/GapReport.hpp"
#include "host/command/MonitorDraft.hpp"
#include "host/feeds/OpenRecorded.hpp"
#include "host/kit/InterfaceFile.hpp"
#include "host/kit/MonitorModule.hpp"
#include "host/kit/RecordedScripts.hpp"
#include "host/kit/ReplayWorld.hpp"
#include "host/kit/Station.hpp"
#include "host/site/HistoryWriter.hpp"
#include "tests/support/RecordingLog.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr RecordId kRoof = 4;
constexpr RecordId kFrost = 9;
/// The monitor's actions begin so long after the notification and take so long.
constexpr double kBegins = 0.25, kTakes = 40.75;

std::string takeText(std::FILE* file) {
    std::string text;
    std::rewind(file);
    for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file))
        text += static_cast<char>(c);
    std::fclose(file);
    return text;
}

struct Outcome {
    ExitStatus status;
    std::string results;
    std::string errors;
};

/// A service as far as a history sees it: a station, a monitor of the module that was built, and a clock that
/// goes on while the monitor acts.
class Service {
  public:
    explicit Service(const std::string& site) : m_writer(HistoryWriter::open(site).value()) {
        EXPECT_TRUE(loadMonitorModule(VIGIL_BINARY_DIR "/bin"));
        m_writer->named(kRoof, "Roof");
    }

    void begin(const MonitorDraft& draft, Date now, ArchiveReason reason = ArchiveReason::Began) {
        const PlugInRecord record{.id = kFrost,
                                  .station = kRoof,
                                  .className = "",
                                  .title = draft.title,
                                  .archive = archiveText(draft)};
        m_world.turnTo(now);
        const World::Scope scope(m_world);
        if (m_monitor) m_monitor->stop();
        m_monitor = monitorFromArchive(record.archive, m_station).value();
        m_monitor->cycleReporting()->setCycleObserver(m_note);
        EXPECT_FALSE(m_monitor->start());
        m_writer->archived(record, now, reason);
        if (reason == ArchiveReason::Began) m_writer->started(kFrost, now, WatchReason::Run);
    }

    /// The notifications of the example's night, or a part of them.
    void night(std::size_t from = 0, std::size_t count = 1000, bool watched = true) {
        auto source = openCsv(VIGIL_SOURCE_DIR "/examples/frost-night.csv", {}, {});
        ASSERT_TRUE(source) << source.error().message;
        for (std::size_t i = 0; i < from + count; ++i) {
            const auto next = source.value()->next();
            ASSERT_TRUE(next);
            if (!next.value()) return;
            if (i >= from) notify(next.value()->time, next.value()->readings, watched);
        }
    }

    void notify(Date time, const std::shared_ptr<const Readings>& readings, bool watched = true) {
        m_last = time;
        m_writer->append(kRoof, std::nullopt, time, readings);
        if (!watched) return;
        m_world.turnTo(time);
        m_world.setNextHandOver(time.plus(kBegins), time.plus(kBegins + kTakes));
        EXPECT_TRUE(m_station->announce(readings).empty());
        m_world.forgetHandOver();
        if (m_note->cycle.outcome != CycleOutcome::Fired) return;
        ++fires;
        m_writer->fired(kRoof, kFrost, time, time.plus(kBegins), time.plus(kBegins + kTakes));
    }

    void end(WatchReason reason = WatchReason::Run) { m_writer->stopped(kFrost, m_last, reason); }
    HistoryWriter& writer() { return *m_writer; }
    Date last() const { return m_last; }

    int fires = 0;

  private:
    std::unique_ptr<HistoryWriter> m_writer;
    RecordingLog m_log;
    InterfaceFile m_files;
    ReplayWorld m_world{m_log, m_files, ""};
    RecordedScripts m_scripts{m_world};
    std::shared_ptr<Station> m_station = std::make_shared<Station>(m_world, "Roof", m_scripts);
    std::shared_ptr<CycleNote> m_note = std::make_shared<CycleNote>(false);
    std::shared_ptr<QRVPlugIn> m_monitor;
    Date m_last;
};

class HistoryCommands : public testing::Test {
  protected:
    std::string site() const { return folder.path() + "/home.vigilsite"; }
    std::string path(const std::string& name) const { return folder.path() + "/" + name; }

    Outcome run(std::vector<std::string> arguments, bool ofSite = true) {
        std::FILE* results = std::tmpfile();
        std::FILE* errors = std::tmpfile();
        Output output(results, errors);
        if (ofSite) arguments.insert(arguments.end(), {"--site", site()});
        const ExitStatus status = runCommandLine(arguments, allCommands(), output, VIGIL_BINARY_DIR "/bin");
        output.flush();
        return {status, takeText(results), takeText(errors)};
    }

    static std::string contents(const std::string& file) {
        std::stringstream text;
        text << std::ifstream(file, std::ios::binary).rdbuf();
        return text.str();
    }

    static MonitorDraft frost(const std::string& condition = "outsideTemp.unitValue < 0",
                              double minutes = 30) {
        MonitorDraft draft;
        draft.title = "Frost";
        draft.condition = condition;
        draft.retriggerMinutes = minutes;
        return draft;
    }

    /// The whole night, watched by the monitor.
    int night(const MonitorDraft& draft) {
        Service service(site());
        service.begin(draft, kEvening);
        service.night();
        service.end();
        return service.fires;
    }

    const Date kEvening = parseDate("2026-04-14 17:59").value();
    TemporaryFolder folder;
};

TEST_F(HistoryCommands, listsWhatIsStoredOfEachStation) {
    night(frost());
    const Outcome list = run({"history"});
    EXPECT_EQ(list.status, ExitStatus::Yes);
    EXPECT_THAT(list.results, AllOf(HasSubstr("Roof"), HasSubstr("169 notifications"),
                                    HasSubstr("2026-04-14T18:00:00Z to 2026-04-15T08:00:00Z")));
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
              "time,\"outsideTemp\",\"outsideHumidity\",\"windSpeed\",\"barometer\"\n"
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

TEST_F(HistoryCommands, saysWhyAMonitorFiredOrNot) {
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

TEST_F(HistoryCommands, saysThatOnlyChangesCount) {
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

TEST_F(HistoryCommands, reportsTheGapBetweenTwoRuns) {
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

TEST_F(HistoryCommands, hasNoGapForAMonitorThatWasSwitchedOff) {
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
    const Outcome unknown = run({"plot", "--station", "Roof", "--keys", "outsideTmp", "-o", "-"});
    EXPECT_EQ(unknown.status, ExitStatus::No);
    EXPECT_THAT(unknown.errors,
                HasSubstr("no reading \"outsideTmp\" is stored of that time; there are barometer"));
}

}  // namespace
}  // namespace vigil
