#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/command/Caret.hpp"
#include "host/command/CommandLine.hpp"
#include "host/command/JsonText.hpp"

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

Outcome run(const std::vector<std::string>& arguments) {
    std::FILE* results = std::tmpfile();
    std::FILE* errors = std::tmpfile();
    Output output(results, errors);
    const ExitStatus status = runCommandLine(arguments, allCommands(), output, "");
    output.flush();
    return {status, takeText(results), takeText(errors)};
}

class CheckAndEval : public testing::Test {
  protected:
    CheckAndEval() { fs::create_directories(m_folder); }
    ~CheckAndEval() override { fs::remove_all(m_folder); }

    std::string file(const std::string& contents) {
        const fs::path path = m_folder / "file";
        std::ofstream(path, std::ios::binary) << contents;
        return path.string();
    }

    fs::path m_folder =
        fs::path(testing::TempDir()) /
        ("eval-" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
};

TEST_F(CheckAndEval, checkPrintsTheCanonicalForm) {
    const Outcome outcome = run({"check", "( windChill.unitValue<1e1 OR windSpeed.unitValue > 25.0 )"});
    EXPECT_EQ(outcome.status, ExitStatus::Yes);
    EXPECT_EQ(outcome.results, "windChill.unitValue < 10 OR windSpeed.unitValue > 25\n");
    EXPECT_EQ(outcome.errors, "");
}

TEST_F(CheckAndEval, checkPointsAtTheMistake) {
    const Outcome outcome = run({"check", "windChill.unitValue < 10 OR windSpeed > 25"});
    EXPECT_EQ(outcome.status, ExitStatus::BadInput);
    EXPECT_EQ(outcome.results, "");
    EXPECT_TRUE(
        outcome.errors.ends_with("\n"
                                 "  windChill.unitValue < 10 OR windSpeed > 25\n"
                                 "                              ^~~~~~~~~\n"
                                 "vigil: did you mean windSpeed.unitValue?\n"))
        << outcome.errors;
}

TEST_F(CheckAndEval, checkAnswersInJson) {
    const Outcome good = run({"check", "--json", "sky.stringValue==\"a\\\"b\""});
    EXPECT_EQ(good.status, ExitStatus::Yes);
    EXPECT_EQ(good.results, "{\"ok\":true,\"printed\":\"sky.stringValue == \\\"a\\\\\\\"b\\\"\"}\n");
    const Outcome bad = run({"check", "--json", "a.unitValue > "});
    EXPECT_EQ(bad.status, ExitStatus::BadInput);
    EXPECT_TRUE(bad.results.starts_with("{\"ok\":false,\"offset\":14,\"error\":\"")) << bad.results;
    EXPECT_EQ(bad.errors, "");
}

const char* const kThreeLines =
    "{\"station\":\"A\",\"time\":\"2026-01-01T00:00:02Z\",\"readings\":{\"t\":1}}\n"
    "{\"time\":\"2026-01-01T00:00:01.5Z\",\"readings\":{\"t\":3}}\n"
    "{\"time\":\"2026-01-01T00:00:03Z\",\"readings\":{}}\n";

TEST_F(CheckAndEval, evalGivesAVerdictALineInTheLinesOrder) {
    const Outcome outcome = run({"eval", "t.unitValue > 2", file(kThreeLines)});
    EXPECT_EQ(outcome.status, ExitStatus::Yes);
    EXPECT_EQ(outcome.results,
              "2026-01-01 00:00:02 +0000  does not hold  A\n"
              "2026-01-01 00:00:01 +0000  holds\n"
              "2026-01-01 00:00:03 +0000  does not hold\n");
}

TEST_F(CheckAndEval, evalAnswersInJson) {
    const Outcome outcome = run({"eval", "--json", "t.unitValue > 2", file(kThreeLines)});
    EXPECT_EQ(outcome.results,
              "{\"time\":\"2026-01-01T00:00:02Z\",\"station\":\"A\",\"holds\":false}\n"
              "{\"time\":\"2026-01-01T00:00:01.500000Z\",\"station\":\"\",\"holds\":true}\n"
              "{\"time\":\"2026-01-01T00:00:03Z\",\"station\":\"\",\"holds\":false}\n");
}

TEST_F(CheckAndEval, evalThatNeverHeldSaysSoByItsStatus) {
    EXPECT_EQ(run({"eval", "t.unitValue > 5", file(kThreeLines)}).status, ExitStatus::No);
    EXPECT_EQ(run({"eval", "t.unitValue > 5", file("")}).status, ExitStatus::No);
}

TEST_F(CheckAndEval, evalKeepsOneStationWhenAsked) {
    const Outcome outcome = run({"eval", "t.unitValue > 0", "--station", "A", file(kThreeLines)});
    EXPECT_EQ(outcome.results, "2026-01-01 00:00:02 +0000  holds  A\n");
}

TEST_F(CheckAndEval, evalReadsCsvToo) {
    const Outcome outcome = run({"eval", "a.unitValue > 1", "--separator", ";", "--time-column", "when",
                                 file("a;when\n2;2026-01-01\n1;2026-01-02\n")});
    EXPECT_EQ(outcome.status, ExitStatus::Yes);
    EXPECT_EQ(outcome.results,
              "2026-01-01 00:00:00 +0000  holds\n2026-01-02 00:00:00 +0000  does not hold\n");
}

TEST_F(CheckAndEval, evalTellsBadLinesAndGoesOn) {
    const std::string path = file("{nope\n" + std::string(kThreeLines));
    const Outcome outcome = run({"eval", "t.unitValue > 2", path});
    EXPECT_EQ(outcome.status, ExitStatus::Yes);
    EXPECT_TRUE(outcome.errors.starts_with("vigil: " + path + ":1: not JSON")) << outcome.errors;
}

TEST_F(CheckAndEval, evalWithNothingButBadLinesIsBadInput) {
    std::string text;
    for (int i = 0; i < 25; ++i)
        text += "{nope\n";
    const std::string path = file(text);
    const Outcome outcome = run({"eval", "t.unitValue > 2", path});
    EXPECT_EQ(outcome.status, ExitStatus::BadInput);
    EXPECT_NE(outcome.errors.find(path + ":20: "), std::string::npos);
    EXPECT_EQ(outcome.errors.find(path + ":21: "), std::string::npos);
    EXPECT_TRUE(outcome.errors.ends_with(": 5 more problems like these\n")) << outcome.errors;
}

TEST_F(CheckAndEval, evalEndsAsItsInputDoes) {
    EXPECT_EQ(run({"eval", "t.unitValue > 2", (m_folder / "none").string()}).status, ExitStatus::Environment);
    EXPECT_EQ(run({"eval", "t.unitValue > 2", file("a,b\nx,2\n")}).status, ExitStatus::BadInput);
    EXPECT_EQ(run({"eval", "t.unitValue >", file(kThreeLines)}).status, ExitStatus::BadInput);
    EXPECT_EQ(run({"eval", "t.unitValue > 2", "--time-column", "x", file("time,t\n")}).status,
              ExitStatus::BadInput);
    EXPECT_EQ(run({"eval", "t.unitValue > 2", "--separator", "ab", file("")}).status, ExitStatus::BadInput);
    EXPECT_EQ(run({"eval", "t.unitValue > 2", "--units", "si", file("")}).status, ExitStatus::BadInput);
    EXPECT_EQ(run({"eval"}).status, ExitStatus::BadInput);
}

TEST_F(CheckAndEval, saysWhyNothingWasJudged) {
    const std::string empty = file("");
    EXPECT_EQ(run({"eval", "t.unitValue > 2", empty}).errors, "vigil: " + empty + " holds no notification\n");
    EXPECT_EQ(run({"eval", "t.unitValue > 2", empty}).status, ExitStatus::No);
    const std::string path = file("time,station,t\n2026-01-01,Roof,5\n2026-01-02,Barn,1\n");
    const Outcome outcome = run({"eval", "t.unitValue > 2", path, "--station", "Shed"});
    EXPECT_EQ(outcome.status, ExitStatus::BadInput);
    EXPECT_EQ(outcome.errors, "vigil: there is no notification of a station \"Shed\" in " + path +
                                  "; there are those of \"Barn\", \"Roof\"\n");
}

TEST_F(CheckAndEval, batchAnswersEachLineInItsPlace) {
    const Outcome outcome = run({"eval", "--batch",
                                 file("{\"condition\":\"a.unitValue > 1\",\"readings\":{\"a\":2}}\n"
                                      "{\"condition\":\"a.unitValue > 1\",\"readings\":{\"a\":null}}\n"
                                      "{\"condition\":\"a.unitValue\",\"readings\":{}}\n"
                                      "{\"condition\":\"s.stringValue == "
                                      "\\\"x\\u0000\\u00e9\\\"\",\"readings\":{\"s\":\"x\\u0000é\"}}\n")});
    EXPECT_EQ(outcome.status, ExitStatus::Yes);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(
        outcome.results,
        "{\"ok\":true,\"printed\":\"a.unitValue > 1\",\"holds\":true}\n"
        "{\"ok\":true,\"printed\":\"a.unitValue > 1\",\"holds\":false}\n"
        "{\"ok\":false,\"offset\":11,\"error\":\"expected a comparison operator but found end of text\"}\n"
        "{\"ok\":true,\"printed\":\"s.stringValue == \\\"x\\u0000é\\\"\",\"holds\":true}\n");
}

TEST_F(CheckAndEval, batchRefusesALineThatIsNone) {
    const std::string path = file(
        "{\"condition\":\"a.unitValue > 1\",\"readings\":{\"a\":2}}\n"
        "nope\n"
        "\n"
        "{\"condition\":1,\"readings\":{}}\n"
        "{\"condition\":\"a.unitValue > 1\"}\n"
        "{\"condition\":\"a.unitValue > 1\",\"readings\":{\"a\":{\"value\":\"x\"}}}\n"
        "{\"condition\":\"a.unitValue > 1\",\"readings\":{\"a\":2}}\n");
    const Outcome outcome = run({"eval", "--batch", path});
    EXPECT_EQ(outcome.status, ExitStatus::BadInput);
    const std::string good = "{\"ok\":true,\"printed\":\"a.unitValue > 1\",\"holds\":true}\n";
    EXPECT_EQ(outcome.results,
              good +
                  "{\"ok\":false,\"line\":2,\"error\":\"not JSON: brackets, commas or colons do not fit "
                  "together\"}\n"
                  "{\"ok\":false,\"line\":4,\"error\":\"condition: expected a text\"}\n"
                  "{\"ok\":false,\"line\":5,\"error\":\"readings: expected an object from key to reading\"}\n"
                  "{\"ok\":false,\"line\":6,\"error\":\"readings.a.value: expected a number\"}\n" +
                  good);
    EXPECT_NE(outcome.errors.find("vigil: " + path + ":6: readings.a.value: expected a number\n"),
              std::string::npos);
}

TEST_F(CheckAndEval, batchKeepsKeysThatAreNoneOfTheLanguage) {
    const Outcome outcome =
        run({"eval", "--batch", file("{\"condition\":\"a_b.unitValue == 1\",\"readings\":{\"a b\":1}}\n")});
    EXPECT_NE(outcome.results.find("\"holds\":false"), std::string::npos);
}

TEST(Caret, standsUnderTheCharacterAndNotUnderTheByte) {
    EXPECT_EQ(caretText("é == x", 3, 2), "  é == x\n    ^~\n");
    EXPECT_EQ(caretText("a", 1, 0), "  a\n   ^\n");
    EXPECT_EQ(caretText("", 0, 0), "  \n  ^\n");
    EXPECT_EQ(caretText("a\tb", 2, 1), "  a b\n    ^\n");
}

TEST(Caret, showsTheLineOfTheMistakeAlone) {
    EXPECT_EQ(caretText("one\ntwo\nthree", 5, 1), "  two\n   ^\n");
    EXPECT_EQ(caretText("one\ntwo", 3, 0), "  one\n     ^\n");
    EXPECT_EQ(caretText("one\ntwo", 4, 1), "  two\n  ^\n");
}

TEST(Caret, cutsALongTextAroundTheMistake) {
    const std::string text = std::string(100, 'a') + "!" + std::string(100, 'b');
    EXPECT_EQ(caretText(text, 100, 1), "  …" + std::string(60, 'a') + "!" + std::string(60, 'b') + "…\n" +
                                           std::string(63, ' ') + "^\n");
}

TEST(Caret, survivesAnOffsetBeyondTheText) {
    EXPECT_EQ(caretText("ab", 9, 9), "  ab\n    ^\n");
}

TEST(JsonText, escapesWhatMustBeAndRepairsWhatIsNoText) {
    std::string text;
    appendJsonText(text, std::string_view("\"\\\n\r\t\0\x1f\x7fé\xff", 11));
    EXPECT_EQ(text, "\"\\\"\\\\\\n\\r\\t\\u0000\\u001f\\u007fé\xEF\xBF\xBD\"");
}

}  // namespace
}  // namespace vigil
