#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "host/command/CommandLine.hpp"
#include "host/command/Commands.hpp"
#include "host/command/Explainer.hpp"

namespace vigil {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

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

class ExplainCommand : public testing::Test {
  protected:
    ExplainCommand() { fs::create_directories(m_folder); }
    ~ExplainCommand() override { fs::remove_all(m_folder); }

    std::string file(const std::string& name, const std::string& contents) {
        const fs::path path = m_folder / name;
        std::ofstream(path, std::ios::binary) << contents;
        return path.string();
    }
    Outcome batch(const std::string& lines) {
        return run({"explain", "--batch", file("batch.jsonl", lines)});
    }

    fs::path m_folder =
        fs::path(testing::TempDir()) /
        ("explain-" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
};

const char* const kTwoRows =
    "time,wind,temp\n"
    "2026-01-01T00:00:00Z,30,12\n"
    "2026-01-01T00:01:00Z,30,4.5\n";

TEST_F(ExplainCommand, namesForEachNotificationTheComparisonsThatHold) {
    const Outcome outcome =
        run({"explain", "wind.unitValue > 25 AND temp.unitValue < 10", file("a.csv", kTwoRows)});
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, ExitStatus::Yes);
    EXPECT_EQ(outcome.results,
              "2026-01-01 00:00:00 +0000  Alert was caused by wind that is now 30.\n"
              "2026-01-01 00:01:00 +0000  Alert was caused by wind that is now 30 & temp that is now 4.5.\n");
}

TEST_F(ExplainCommand, theStatusIsNoWhereTheConditionNeverHeld) {
    const Outcome outcome =
        run({"explain", "wind.unitValue > 25 AND temp.unitValue < 0", file("a.csv", kTwoRows)});
    EXPECT_EQ(outcome.status, ExitStatus::No);
    EXPECT_THAT(outcome.results, HasSubstr("Alert was caused by wind that is now 30.\n"));
}

TEST_F(ExplainCommand, saysToPeopleThatNothingHolds) {
    const Outcome outcome = run({"explain", "temp.unitValue < 10", file("a.csv", kTwoRows)});
    EXPECT_THAT(outcome.results, HasSubstr("2026-01-01 00:00:00 +0000  does not hold\n"));
}

TEST_F(ExplainCommand, printsOneObjectALine) {
    const Outcome outcome = run({"explain", "--json", "temp.unitValue < 10", file("a.csv", kTwoRows)});
    EXPECT_EQ(
        outcome.results,
        "{\"time\":\"2026-01-01T00:00:00Z\",\"station\":\"\",\"status\":\"Alert was caused by .\","
        "\"failure\":null}\n"
        "{\"time\":\"2026-01-01T00:01:00Z\",\"station\":\"\",\"status\":\"Alert was caused by temp that is "
        "now 4.5.\",\"failure\":null}\n");
}

TEST_F(ExplainCommand, saysWhereAnExplanationBreaksOff) {
    const std::string path = file("a.csv", kTwoRows);
    EXPECT_THAT(
        run({"explain", "wind.unitValue > 25 AND (temp.unitValue < 10 OR temp.unitValue > 30)", path})
            .results,
        HasSubstr(
            "Alert was caused by   (cannot be explained: a piece of the condition's text is no condition)"));
    EXPECT_THAT(run({"explain", "--json",
                     "wind.unitValue > 25 AND (temp.unitValue < 1 OR temp.unitValue > 30)", path})
                    .results,
                HasSubstr("\"status\":\"Alert was caused by \",\"failure\":\"parse\"}"));
    const std::string keys = file("b.csv", "time,wind,windGust\n2026-01-01T00:00:00Z,1,30\n");
    EXPECT_THAT(run({"explain", "windGust.unitValue > 25", keys}).results,
                HasSubstr("(cannot be explained: a piece of the condition's text has no blank)"));
}

TEST_F(ExplainCommand, answersBatchesInTheOrderOfTheReadings) {
    const Outcome outcome = batch(
        R"({"condition":"wind.unitValue>25","properties":[{"propertyName":"wind","name":"Wind","unitValue":30,"unitStringValueWithUnitShort":"30 kt"}]})"
        "\n"
        R"({"condition":"wind.unitValue > 25","properties":[{"propertyName":"wind","name":"Wind","unitValue":3}]})"
        "\n"
        R"({"condition":"wind.unitValue > 25","properties":[]})"
        "\n"
        R"({"condition":"wg.unitValue > 25","properties":[{"propertyName":"w","name":"W","unitValue":1},{"propertyName":"wg","name":"Wg","unitValue":30}]})"
        "\n"
        R"({"condition":"wg.unitValue > 25","properties":[{"propertyName":"wg","name":"Wg","unitValue":30},{"propertyName":"w","name":"W","unitValue":1}]})"
        "\n"
        R"j({"condition":"P.unitValue > 25 AND (Q.unitValue > 1 OR Q.unitValue < 0)","properties":[{"propertyName":"P","unitValue":30},{"propertyName":"Q","unitValue":30}]})j"
        "\n");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, ExitStatus::Yes);
    EXPECT_EQ(outcome.results,
              "{\"status\":\"Alert was caused by Wind that is now 30 kt.\",\"failure\":null}\n"
              "{\"status\":\"Alert was caused by .\",\"failure\":null}\n"
              "{\"status\":\"Alert was caused by .\",\"failure\":null}\n"
              "{\"status\":\"Alert was caused by W that is now 1\",\"failure\":\"range\"}\n"
              "{\"status\":\"Alert was caused by Wg that is now 30\",\"failure\":\"range\"}\n"
              "{\"status\":\"Alert was caused by \",\"failure\":\"parse\"}\n");
}

TEST_F(ExplainCommand, aBatchLineThatIsNoneIsToldAndAnswered) {
    const Outcome outcome = batch(
        "{\"condition\":\"wind\",\"properties\":[]}\n"
        "\n"
        "{\"condition\":1,\"properties\":[]}\n"
        "{\"condition\":\"a.unitValue > 1\",\"properties\":{}}\n"
        "nonsense\n"
        "{\"condition\":\"a.unitValue != 1\",\"properties\":[]}\n");
    EXPECT_EQ(outcome.status, ExitStatus::BadInput);
    EXPECT_THAT(outcome.results, HasSubstr("{\"ok\":false,\"offset\":0,\"error\":"));
    EXPECT_THAT(outcome.results,
                HasSubstr("{\"ok\":false,\"line\":3,\"error\":\"condition: expected a text\"}\n"));
    EXPECT_THAT(outcome.results, HasSubstr("{\"ok\":false,\"line\":4,\"error\":"));
    EXPECT_THAT(outcome.results, HasSubstr("{\"ok\":false,\"line\":5,\"error\":"));
    EXPECT_TRUE(outcome.results.ends_with("{\"status\":\"Alert was caused by .\",\"failure\":null}\n"));
    EXPECT_THAT(outcome.errors, HasSubstr("batch.jsonl:5: "));
}

TEST_F(ExplainCommand, aMistypedConditionIsShownWithACaret) {
    const Outcome outcome = run({"explain", "wind > 25", file("a.csv", kTwoRows)});
    EXPECT_EQ(outcome.status, ExitStatus::BadInput);
    EXPECT_THAT(outcome.errors, HasSubstr("  wind > 25\n  ^"));
    EXPECT_EQ(outcome.results, "");
}

TEST_F(ExplainCommand, withoutTheModuleItSaysWhichFileIsMissing) {
    const Outcome outcome =
        run({"explain", "wind.unitValue > 25", file("a.csv", kTwoRows)}, m_folder.string());
    EXPECT_EQ(outcome.status, ExitStatus::Environment);
    EXPECT_THAT(outcome.errors, HasSubstr("VigilPlugIn"));
    EXPECT_EQ(batch("").status, ExitStatus::Yes);
}

TEST_F(ExplainCommand, aConditionIsWantedUnlessItIsABatch) {
    EXPECT_EQ(run({"explain"}).status, ExitStatus::BadInput);
    EXPECT_EQ(run({"explain", "--batch", "--json"}).status, ExitStatus::BadInput);
    EXPECT_EQ(run({"explain", "--batch", "a", "b"}).status, ExitStatus::BadInput);
    EXPECT_EQ(run({"explain", "--batch", (m_folder / "none").string()}).status, ExitStatus::Environment);
}

}  // namespace
}  // namespace vigil
