#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
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

class MonitorCommand : public testing::Test {
  protected:
    MonitorCommand() { fs::create_directories(m_folder); }
    ~MonitorCommand() override { fs::remove_all(m_folder); }

    /// `vigil monitor …` on a site of the test's own.
    Outcome run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "monitor");
        arguments.insert(arguments.end(), {"--site", site()});
        std::FILE* results = std::tmpfile();
        std::FILE* errors = std::tmpfile();
        Output output(results, errors);
        const ExitStatus status = runCommandLine(arguments, allCommands(), output, VIGIL_BINARY_DIR "/bin");
        output.flush();
        return {status, takeText(results), takeText(errors)};
    }
    std::string site() const { return (m_folder / "monitors.json").string(); }
    std::string contents() const {
        std::ifstream file(site(), std::ios::binary);
        std::ostringstream text;
        text << file.rdbuf();
        return text.str();
    }

    fs::path m_folder =
        fs::path(testing::TempDir()) /
        ("monitor-" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
};

TEST_F(MonitorCommand, createsAMonitorThroughItsEditorsAndShowsIt) {
    const Outcome outcome =
        run({"create", "Frost", "--station", "Roof", "--condition", "(outsideTemp.unitValue<0)",
             "--retrigger", "0.5", "--active", "true", "--action", "Run script=notify.sh a  b", "--action",
             "Play Sound=bell.wav", "--action", "Speak Text=It freezes = stay in", "--action",
             "Speak Conditions=No"});
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, ExitStatus::Yes);
    const std::string shown =
        "Frost (active, station Roof)\n"
        "  condition  outsideTemp.unitValue < 0\n"
        "  waits      0.5 minutes after a fire\n"
        "  action 1   Run script: notify.sh a  b\n"
        "  action 2   Play Sound: bell.wav\n"
        "  action 3   Speak Text: It freezes = stay in\n"
        "  action 4   Speak Conditions: No\n";
    EXPECT_EQ(outcome.results, shown);
    EXPECT_EQ(run({"show", "Frost"}).results, shown);
}

TEST_F(MonitorCommand, aNewMonitorIsTheDefaultOne) {
    EXPECT_EQ(run({"create", "Plain"}).results,
              "Plain (not active, station Station)\n"
              "  condition  windChill.unitValue < 10 OR windSpeed.unitValue > 25\n"
              "  waits      1 minutes after a fire\n"
              "  action 1   Run script: \n");
}

TEST_F(MonitorCommand, editsWhatIsNamedAndNothingElse) {
    run({"create", "Frost", "--condition", "t.unitValue < 0", "--action", "Speak Text=one", "--action",
         "Speak Text=two"});
    run({"edit", "Frost", "--retrigger", "5", "--on-change", "true"});
    EXPECT_EQ(run({"show", "Frost"}).results,
              "Frost (not active, station Station)\n"
              "  condition  t.unitValue < 0\n"
              "  waits      5 minutes after a fire\n"
              "  judges     only readings that are newer and have changed\n"
              "  action 1   Speak Text: one\n"
              "  action 2   Speak Text: two\n");
    run({"edit", "Frost", "--title", "Ice", "--action", "Play Sound=drop.wav"});
    EXPECT_EQ(run({"list", "--json"}).results,
              R"({"title":"Ice","station":"Station","active":false,"condition":"t.unitValue < 0",)"
              R"("retriggerMinutes":5,"onlyOnChange":true,"actions":["Play Sound: drop.wav"]})"
              "\n");
}

TEST_F(MonitorCommand, refusesWhatIsNotOfferedAndLeavesTheFileAlone) {
    run({"create", "Frost", "--condition", "t.unitValue < 0"});
    const std::string before = contents();
    EXPECT_EQ(
        run({"edit", "Frost", "--action", "Send an email to=a@b.cd"}).errors,
        "vigil: no action is called \"Send an email to\"; there are: Run script, Play Sound, Speak Text, "
        "Speak Conditions\n");
    EXPECT_EQ(run({"edit", "Frost", "--action", "Play Sound=none.wav"}).status, ExitStatus::BadInput);
    EXPECT_EQ(run({"edit", "Frost", "--action", "Speak Conditions=Maybe"}).errors,
              "vigil: \"Speak Conditions\" does not offer \"Maybe\"; there are: Yes, No\n");
    EXPECT_EQ(run({"edit", "Frost", "--condition", "t.unitValue"}).status, ExitStatus::BadInput);
    EXPECT_EQ(run({"edit", "Frosty", "--retrigger", "1"}).errors,
              "vigil: no monitor is called \"Frosty\" in " + site() + "; there are: Frost\n");
    EXPECT_EQ(run({"create", "Frost"}).status, ExitStatus::BadInput);
    EXPECT_EQ(contents(), before);
}

TEST_F(MonitorCommand, removesOneMonitor) {
    run({"create", "A"});
    run({"create", "B"});
    EXPECT_EQ(run({"remove", "A"}).status, ExitStatus::Yes);
    EXPECT_EQ(run({"show", "A"}).status, ExitStatus::BadInput);
    EXPECT_EQ(run({"show", "B"}).status, ExitStatus::Yes);
}

TEST_F(MonitorCommand, testsRowsThatPlayOrSpeakAndRunsNoScript) {
    run({"create", "A", "--action", "Run script=none.sh"});
    const Outcome outcome = run({"test", "A"});
    EXPECT_EQ(outcome.status, ExitStatus::Yes);
    EXPECT_EQ(outcome.results,
              "Tested \"A\": rows that play or speak were run, scripts and messages were not.\n");
}

TEST_F(MonitorCommand, aFileThatItDoesNotUnderstandIsNamedAndLeftAlone) {
    for (const char* text : {"nope", "{}", R"({"format":"vigil-monitors","version":2,"monitors":[]})",
                             R"({"format":"vigil-monitors","version":1})",
                             R"({"format":"vigil-monitors","version":1,"monitors":[{"title":"A"}]})"}) {
        std::ofstream(site(), std::ios::binary) << text;
        const Outcome outcome = run({"create", "B"});
        EXPECT_EQ(outcome.status, ExitStatus::Environment) << text;
        EXPECT_TRUE(outcome.errors.starts_with("vigil: " + site() + ": ")) << outcome.errors;
        EXPECT_EQ(contents(), text);
    }
}

TEST_F(MonitorCommand, aDamagedArchiveIsNamedWithItsPlace) {
    std::ofstream(site(), std::ios::binary)
        << R"({"format":"vigil-monitors","version":1,"monitors":[{"title":"A","station":"S","archive":{"format":"vigil-archive","version":1,"root":{"$class":"Nobody","$id":1}}}]})";
    const Outcome outcome = run({"show", "A"});
    EXPECT_EQ(outcome.status, ExitStatus::Environment);
    EXPECT_TRUE(outcome.errors.starts_with("vigil: the monitor \"A\": root")) << outcome.errors;
}

}  // namespace
}  // namespace vigil
