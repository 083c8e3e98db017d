#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/command/CommandLine.hpp"
#include "host/command/Commands.hpp"

namespace vigil {
namespace {

namespace fs = std::filesystem;

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

/// Runs a command with the module that was built.
Outcome run(const std::vector<std::string>& arguments,
            const std::string& programFolder = VIGIL_BINARY_DIR "/bin") {
    std::FILE* results = std::tmpfile();
    std::FILE* errors = std::tmpfile();
    Output output(results, errors);
    const ExitStatus status = runCommandLine(arguments, allCommands(), output, programFolder);
    output.flush();
    return {status, takeText(results), takeText(errors)};
}

class ReplayCommand : public testing::Test {
  protected:
    ReplayCommand() { fs::create_directories(m_folder); }
    ~ReplayCommand() override { fs::remove_all(m_folder); }

    std::string file(const std::string& name, const std::string& contents) {
        const fs::path path = m_folder / name;
        std::ofstream(path, std::ios::binary) << contents;
        return path.string();
    }

    fs::path m_folder =
        fs::path(testing::TempDir()) /
        ("replay-" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
};

const char* const kFourRows =
    "time,t,h\n"
    "2026-01-01T00:00:00Z,5,1\n"
    "2026-01-01T00:00:20Z,5,2\n"
    "2026-01-01T00:00:30Z,1,3\n"
    "2026-01-01T00:00:40.5Z,5,3\n";

TEST_F(ReplayCommand, tellsWhenItWouldHaveFired) {
    const Outcome outcome = run({"replay", file("a.csv", kFourRows), "--condition", "t.unitValue > 2"});
    EXPECT_EQ(outcome.status, ExitStatus::Yes);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.results,
              "2026-01-01 00:00:00 +0000  fired    next 2026-01-01 00:01:00 +0000\n"
              "Fired once in 4 notifications (missed 0, waiting 3).\n");
}

TEST_F(ReplayCommand, tracesEveryNotificationWithFractionsAndTheGrowingStatus) {
    const Outcome outcome = run({"replay", file("a.csv", kFourRows), "--condition", "t.unitValue > 2",
                                 "--retrigger", "0.375", "--trace", "--json"});
    EXPECT_EQ(outcome.status, ExitStatus::Yes);
    const std::string status = "Check Activate to start.Next trigger at 2026-01-01 00:00:22 +0000";
    const std::string missed =
        "The conditions have NOT triggered an alert yet.Next trigger at 2026-01-01 00:00:22 +0000";
    EXPECT_EQ(outcome.results,
              R"({"time":"2026-01-01T00:00:00Z","outcome":"fired","inputs":["h","t"],"status":")" + status +
                  R"(","next":"2026-01-01T00:00:22.500000Z"})"
                  "\n"
                  R"({"time":"2026-01-01T00:00:20Z","outcome":"waiting","inputs":[],"status":")" +
                  status +
                  R"(","next":"2026-01-01T00:00:22.500000Z"})"
                  "\n"
                  R"({"time":"2026-01-01T00:00:30Z","outcome":"missed","inputs":["h","t"],"status":")" +
                  missed +
                  R"(","next":"2026-01-01T00:00:22.500000Z"})"
                  "\n"
                  R"({"time":"2026-01-01T00:00:40.500000Z","outcome":"fired","inputs":["h","t"],"status":")" +
                  missed +
                  R"(Next trigger at 2026-01-01 00:01:03 +0000","next":"2026-01-01T00:01:03.000000Z"})"
                  "\n");
}

TEST_F(ReplayCommand, judgesOnlyWhatChangedWhenAsked) {
    const Outcome outcome = run({"replay", file("a.csv", kFourRows), "--condition", "t.unitValue > 2",
                                 "--retrigger", "0", "--on-change", "--trace"});
    EXPECT_EQ(outcome.results,
              "2026-01-01 00:00:00 +0000  fired    next 2026-01-01 00:00:00 +0000  h t\n"
              "2026-01-01 00:00:20 +0000  missed   h\n"
              "2026-01-01 00:00:30 +0000  missed   h t\n"
              "2026-01-01 00:00:40 +0000  fired    next 2026-01-01 00:00:40 +0000  t\n"
              "Fired 2 times in 4 notifications (missed 2, waiting 0).\n");
}

TEST_F(ReplayCommand, givesEachStationAMonitorOfItsOwn) {
    const std::string path =
        file("a.jsonl",
             "{\"station\":\"A\",\"time\":\"2026-01-01T00:00:00Z\",\"readings\":{\"t\":5}}\n"
             "{\"station\":\"B\",\"time\":\"2026-01-01T00:00:01Z\",\"readings\":{\"t\":5}}\n"
             "{\"station\":\"A\",\"time\":\"2026-01-01T00:00:02Z\",\"readings\":{\"t\":5}}\n");
    const Outcome outcome = run({"replay", path, "--condition", "t.unitValue > 2", "--json"});
    EXPECT_EQ(
        outcome.results,
        R"({"station":"A","time":"2026-01-01T00:00:00Z","outcome":"fired","next":"2026-01-01T00:01:00.000000Z"})"
        "\n"
        R"({"station":"B","time":"2026-01-01T00:00:01Z","outcome":"fired","next":"2026-01-01T00:01:01.000000Z"})"
        "\n");
}

TEST_F(ReplayCommand, saysThatItNeverFiredByItsStatus) {
    const Outcome outcome = run({"replay", file("a.csv", kFourRows), "--condition", "t.unitValue > 20"});
    EXPECT_EQ(outcome.status, ExitStatus::No);
    EXPECT_EQ(outcome.results, "Never fired in 4 notifications (missed 4, waiting 0).\n");
}

TEST_F(ReplayCommand, namesReadingsThatNoNotificationHeld) {
    const Outcome outcome =
        run({"replay", file("a.csv", kFourRows), "--condition", "t.unitValue > 20 AND temp.unitValue > 1"});
    EXPECT_EQ(outcome.status, ExitStatus::No);
    EXPECT_EQ(outcome.errors, "vigil: no notification held the reading temp; there are: h, t\n");
}

TEST_F(ReplayCommand, writesTheMonitorsLogWhenAsked) {
    const Outcome outcome = run({"replay", file("a.csv", "time,t\n2026-01-01,5\n2026-01-02,1\n"),
                                 "--condition", "t.unitValue > 2", "--log"});
    EXPECT_EQ(outcome.errors,
              "2026-01-01T00:00:00Z 3 Vigil evaluation dictionary: {t = 5} #QRVVigilPlugIn\n"
              "2026-01-02T00:00:00Z 3 Vigil evaluation dictionary: {t = 1} #QRVVigilPlugIn\n");
}

TEST_F(ReplayCommand, refusesWhatItCannotUseWithTheReason) {
    const std::string path = file("a.csv", kFourRows);
    EXPECT_EQ(run({"replay", path}).status, ExitStatus::BadInput);
    EXPECT_EQ(run({"replay", path, "--condition", "t > 2"}).status, ExitStatus::BadInput);
    for (const char* minutes : {"-1", "nan", "x", "inf", ""})
        EXPECT_EQ(run({"replay", path, "--condition", "t.unitValue > 2", "--retrigger", minutes}).status,
                  ExitStatus::BadInput)
            << minutes;
    const Outcome other = run({"replay", path, "--condition", "t.unitValue > 2", "--station", "Shed"});
    EXPECT_EQ(other.status, ExitStatus::BadInput);
    EXPECT_NE(other.errors.find("no notification of a station \"Shed\""), std::string::npos) << other.errors;
    EXPECT_EQ(run({"replay", path + "x", "--condition", "t.unitValue > 2"}).status, ExitStatus::Environment);
    const Outcome nothing = run({"replay", path, "--condition", "t.unitValue > 2"}, m_folder.string());
    EXPECT_EQ(nothing.status, ExitStatus::Environment);
    EXPECT_NE(nothing.errors.find("lib/vigil/VigilPlugIn"), std::string::npos) << nothing.errors;
}

TEST_F(ReplayCommand, theDemonstrationFiresWithinASecondAndItsScriptRuns) {
    const Outcome outcome = run({"demo", "--seconds", "1"});
    EXPECT_EQ(outcome.status, ExitStatus::Yes) << outcome.errors;
    EXPECT_NE(outcome.results.find("  FIRED\n"), std::string::npos) << outcome.results;
    EXPECT_NE(outcome.results.find("notify.sh wrote: At the Simulated station it feels like 0.6 °C"),
              std::string::npos)
        << outcome.results;
    EXPECT_NE(outcome.results.find("Fired once, missed 3, waiting 1; 1 script ran, 0 failed.\n"),
              std::string::npos)
        << outcome.results;
    EXPECT_EQ(outcome.errors, "");
}

}  // namespace
}  // namespace vigil
