#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "host/command/CommandLine.hpp"
#include "host/command/Commands.hpp"
#include "host/site/SiteCopy.hpp"
#include "host/site/SiteFile.hpp"

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
    MonitorCommand() {
        fs::create_directories(m_folder);
        setenv("XDG_CONFIG_HOME", m_folder.c_str(), 1);
        EXPECT_TRUE(SiteFile::create(site()));
        for (const char* name : {"Roof", "Pond"})
            EXPECT_TRUE(SiteFile::open(site(), Access::Write).value()->addStation({.name = name}));
    }
    ~MonitorCommand() override {
        unsetenv("XDG_CONFIG_HOME");
        fs::remove_all(m_folder);
    }

    /// `vigil monitor …` on a site of the test's own.
    Outcome run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "monitor");
        arguments.insert(arguments.end(), {"--site", site()});
        const bool creates = arguments[1] == "create";
        const bool named = std::find(arguments.begin(), arguments.end(), "--station") != arguments.end();
        if (creates && !named) arguments.insert(arguments.end(), {"--station", "Pond"});
        return runWords(arguments);
    }
    static Outcome runWords(const std::vector<std::string>& arguments) {
        std::FILE* results = std::tmpfile();
        std::FILE* errors = std::tmpfile();
        Output output(results, errors);
        const ExitStatus status = runCommandLine(arguments, allCommands(), output, VIGIL_BINARY_DIR "/bin");
        output.flush();
        return {status, takeText(results), takeText(errors)};
    }
    std::string site() const { return (m_folder / "home.vigilsite").string(); }
    std::string scripts() const { return (m_folder / "vigil/scripts").string(); }
    /// All that it holds.
    std::string contents() const {
        std::string lines;
        EXPECT_TRUE(exportSiteLines(site(), [&](std::string_view line) {
            lines += line;
            return true;
        }));
        return lines;
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
    EXPECT_EQ(outcome.errors, "vigil: there is no script \"notify.sh\" in " + scripts() + " yet\n");
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
    const Outcome made = run({"create", "Plain"});
    EXPECT_EQ(
        made.errors,
        "vigil: it has the default condition; its script row names no script yet; not active: `vigil monitor "
        "edit 'Plain' --active`\n");
    EXPECT_EQ(made.results,
              "Plain (not active, station Pond)\n"
              "  condition  windChill.unitValue < 10 OR windSpeed.unitValue > 25\n"
              "  waits      1 minute after a fire\n"
              "  action 1   Run script: \n");
}

TEST_F(MonitorCommand, editsWhatIsNamedAndNothingElse) {
    run({"create", "Frost", "--condition", "t.unitValue < 0", "--action", "Speak Text=one", "--action",
         "Speak Text=two"});
    run({"edit", "Frost", "--retrigger", "5", "--on-change", "true"});
    EXPECT_EQ(run({"show", "Frost"}).results,
              "Frost (not active, station Pond)\n"
              "  condition  t.unitValue < 0\n"
              "  waits      5 minutes after a fire\n"
              "  judges     only readings that are newer and have changed\n"
              "  action 1   Speak Text: one\n"
              "  action 2   Speak Text: two\n");
    run({"edit", "Frost", "--title", "Ice", "--action", "Play Sound=drop.wav"});
    EXPECT_EQ(run({"list", "--json"}).results,
              R"({"title":"Ice","station":"Pond","active":false,"condition":"t.unitValue < 0",)"
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

TEST_F(MonitorCommand, watchesAStationOfTheSite) {
    const std::string before = contents();
    const Outcome unknown = run({"create", "A", "--station", "Sea"});
    EXPECT_EQ(unknown.status, ExitStatus::BadInput);
    EXPECT_EQ(unknown.errors,
              "vigil: no station is called \"Sea\" in " + site() + "; there are: Roof, Pond\n");
    const Outcome unnamed = runWords({"monitor", "create", "A", "--site", site()});
    EXPECT_EQ(unnamed.status, ExitStatus::BadInput);
    EXPECT_EQ(unnamed.errors, "vigil: --station has to say which station; there are: Roof, Pond\n");
    EXPECT_EQ(contents(), before);
    {
        const auto open = SiteFile::open(site(), Access::Write);
        ASSERT_TRUE(open.value()->removeStation(open.value()->stationNamed("Roof").value()->id));
    }
    EXPECT_TRUE(runWords({"monitor", "create", "A", "--site", site()})
                    .results.starts_with("A (not active, station Pond)"));
    {
        const auto open = SiteFile::open(site(), Access::Write);
        ASSERT_TRUE(open.value()->removeStation(open.value()->stationNamed("Pond").value()->id));
    }
    EXPECT_EQ(
        runWords({"monitor", "create", "B", "--site", site()}).errors,
        "vigil: " + site() + " has no station yet; `vigil station create --help` shows how to make one\n");
}

TEST_F(MonitorCommand, needsNoTitleAndIsActiveAtAWord) {
    EXPECT_TRUE(run({"create", "--active"}).results.starts_with("Vigil (active, station Pond)"));
    EXPECT_TRUE(run({"create", "--active", "--retrigger", "15"}).results.starts_with("Vigil 2 (active,"));
    EXPECT_TRUE(run({"create", "--active", "false"}).results.starts_with("Vigil 3 (not active,"));
    EXPECT_TRUE(run({"edit", "Vigil", "--active=false"}).results.starts_with("Vigil (not active,"));
    EXPECT_EQ(run({"create", ""}).errors, "vigil: a monitor needs a title\n");
}

TEST_F(MonitorCommand, changesASiteThatIsRunAndSaysWhoHasToHearOfIt) {
    run({"create", "A", "--condition", "t.unitValue < 0"});
    const auto running = SiteFile::open(site(), Access::Write);
    const Outcome outcome = run({"edit", "A", "--active", "--action", "Speak Text=a"});
    EXPECT_EQ(outcome.status, ExitStatus::Yes);
    const std::string id = std::to_string(getpid());
    EXPECT_EQ(outcome.errors, "vigil: process " + id +
                                  " runs this site and takes the change over at `kill -HUP " + id + "`\n");
    EXPECT_EQ(running.value()->plugInTitled("A").value()->edition, 1);
}

TEST_F(MonitorCommand, aSiteThatIsMissingIsNamedWithWhatMakesOne) {
    const std::string missing = (m_folder / "none.vigilsite").string();
    const Outcome outcome = runWords({"monitor", "list", "--site", missing});
    EXPECT_EQ(outcome.status, ExitStatus::BadInput);
    EXPECT_EQ(outcome.errors,
              "vigil: " + missing + ": there is no such site; `vigil site create` makes one\n");
}

TEST_F(MonitorCommand, monitorsOfBeforeAreToldOfWhereTheSiteIsTheUsersOwn) {
    setenv("XDG_DATA_HOME", m_folder.c_str(), 1);
    fs::create_directories(m_folder / "vigil");
    const std::string before = (m_folder / "vigil/monitors.json").string();
    std::ofstream(before)
        << R"({"format":"vigil-monitors","version":1,"monitors":[{"title":"A","station":"S","archive":{"format":"vigil-archive","version":1,"root":{"$class":"Nobody","$id":1}}}]})";
    const std::string hint = "vigil: monitors of an earlier version stand in " + before +
                             "; `vigil site import " + before + "` takes them over\n";
    EXPECT_TRUE(runWords({"monitor", "list"}).errors.ends_with(hint));
    EXPECT_EQ(runWords({"site", "create"}).errors, hint);
    EXPECT_EQ(runWords({"site", "import", before}).status, ExitStatus::Yes);
    EXPECT_EQ(runWords({"monitor", "list"}).errors.substr(0, 20), "vigil: the monitor \"");
    unsetenv("XDG_DATA_HOME");
}

TEST_F(MonitorCommand, aDamagedArchiveIsNamedWithItsPlace) {
    {
        const auto open = SiteFile::open(site(), Access::Write);
        ASSERT_TRUE(open.value()->addPlugIn(
            {.station = open.value()->stationNamed("Roof").value()->id,
             .title = "A",
             .archive = R"({"format":"vigil-archive","version":1,"root":{"$class":"Nobody","$id":1}})"}));
    }
    const Outcome outcome = run({"show", "A"});
    EXPECT_EQ(outcome.status, ExitStatus::Environment);
    EXPECT_TRUE(outcome.errors.starts_with("vigil: the monitor \"A\": root")) << outcome.errors;
}

}  // namespace
}  // namespace vigil
