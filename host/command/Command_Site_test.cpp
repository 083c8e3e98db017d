#include <cstdio>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "host/command/CommandLine.hpp"
#include "host/command/Commands.hpp"
#include "host/site/SiteFile.hpp"
#include "host/site/SiteWriter.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {
using testing::HasSubstr, testing::StartsWith;

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

class SiteCommand : public testing::Test {
  protected:
    /// `vigil …` on a site of the test's own.
    Outcome run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.end(), {"--site", site()});
        std::FILE* results = std::tmpfile();
        std::FILE* errors = std::tmpfile();
        Output output(results, errors);
        const ExitStatus status = runCommandLine(arguments, allCommands(), output, VIGIL_BINARY_DIR "/bin");
        output.flush();
        return {status, takeText(results), takeText(errors)};
    }
    std::string site() const { return at("home.vigilsite"); }
    std::string at(const std::string& name) const { return m_folder.path() + "/" + name; }
    std::string lines() const { return run({"site", "export", "--json", "-"}).results; }

    TemporaryFolder m_folder;
};

TEST_F(SiteCommand, makesAnEmptySiteOnce) {
    const Outcome made = run({"site", "create"});
    EXPECT_EQ(made.errors, "");
    EXPECT_EQ(made.results, "Made the site " + site() +
                                ". `vigil station create --help` shows how to give it a station.\n");
    const Outcome again = run({"site", "create"});
    EXPECT_EQ(again.status, ExitStatus::BadInput);
    EXPECT_EQ(again.errors, "vigil: " + site() + ": is there already, and was left as it is\n");
    EXPECT_EQ(run({"station", "list"}).results,
              "No station yet in " + site() + "; `vigil station create --help` shows how to make one.\n");
}

TEST_F(SiteCommand, makesAndShowsAStation) {
    run({"site", "create"});
    const Outcome made =
        run({"station", "create", "Home", "--feed", "upload://127.0.0.1:8090/", "--units", "us", "--unit",
             "windSpeed=knots", "--rolling", "windSpeed  mean 10", "--rolling", "outsideTemp below 0"});
    EXPECT_EQ(made.errors, "");
    const std::string shown =
        "Home (0 monitors, US units)\n"
        "  feed       upload://127.0.0.1:8090/\n  reads      temperature in °F, wind in mph, rain in in\n"
        "  unit       windSpeed in kn\n"
        "  rolling    windSpeed mean 10\n"
        "  rolling    outsideTemp below 0\n";
    EXPECT_EQ(made.results, shown);
    EXPECT_EQ(run({"station", "show", "Home"}).results, shown);
    EXPECT_EQ(run({"station", "list", "--json"}).results,
              R"({"name":"Home","feed":"upload://127.0.0.1:8090/","units":"us","unit":{"windSpeed":"kn"},)"
              R"("rolling":["windSpeed mean 10","outsideTemp below 0"],"monitors":0})"
              "\n");
}

TEST_F(SiteCommand, editsOfAStationWhatIsNamedAndNothingElse) {
    run({"site", "create"});
    run({"station", "create", "Home", "--feed", "simulated:", "--unit", "windSpeed=kn", "--rolling",
         "rainRate max 60"});
    EXPECT_EQ(run({"station", "edit", "Home", "--name", "House", "--unit", "windSpeed=", "--unit",
                   "barometer=inHg"})
                  .results,
              "House (0 monitors, metric units)\n"
              "  feed       simulated:\n  reads      temperature in °C, wind in m/s, rain in mm\n"
              "  unit       barometer in inHg\n"
              "  rolling    rainRate max 60\n");
    EXPECT_EQ(run({"station", "edit", "House", "--no-rolling", "--feed", ""}).results,
              "House (0 monitors, metric units)\n"
              "  feed       none yet\n  reads      temperature in °C, wind in m/s, rain in mm\n"
              "  unit       barometer in inHg\n");
}

TEST_F(SiteCommand, refusesWhatAStationDoesNotTakeAndLeavesTheSiteAlone) {
    run({"site", "create"});
    run({"station", "create", "Home"});
    run({"station", "create", "Shed"});
    const std::string before = lines();
    const auto refusal = [&](std::vector<std::string> words) {
        words.insert(words.begin(), "station");
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.status, ExitStatus::BadInput) << outcome.errors;
        EXPECT_EQ(lines(), before);
        return outcome.errors;
    };
    EXPECT_THAT(refusal({"create", "New", "--feed", "gopher://x"}), StartsWith("vigil: feed, byte 0: "));
    EXPECT_THAT(refusal({"edit", "Home", "--feed", "upload://"}), StartsWith("vigil: feed, byte "));
    EXPECT_EQ(refusal({"edit", "Home", "--unit", "windSpeed"}),
              "vigil: --unit \"windSpeed\": expected KEY=UNIT, as in windSpeed=kn\n");
    EXPECT_EQ(refusal({"edit", "Home", "--unit", "wind speed=kn"}),
              "vigil: --unit \"wind speed=kn\": expected KEY=UNIT, as in windSpeed=kn\n");
    EXPECT_EQ(refusal({"edit", "Home", "--unit", "windSpeed=warp"}),
              "vigil: --unit \"windSpeed=warp\": no unit is called \"warp\"\n");
    EXPECT_THAT(refusal({"edit", "Home", "--unit", "windSpeed=hPa"}), HasSubstr("does not convert into hPa"));
    EXPECT_THAT(refusal({"edit", "Home", "--rolling", "windSpeed mean"}),
                StartsWith("vigil: --rolling \"windSpeed mean\": rolling reading, byte 14: "));
    EXPECT_THAT(refusal({"edit", "Home", "--rolling", "t age", "--rolling", " t  age"}),
                HasSubstr("tAge is there already"));
    EXPECT_EQ(refusal({"create", "Home"}),
              "vigil: a station called \"Home\" is there already; `vigil station edit` changes it\n");
    EXPECT_EQ(refusal({"create", ""}), "vigil: a station needs a name\n");
    EXPECT_EQ(refusal({"edit", "Home", "--name", "Shed"}),
              "vigil: the name \"Shed\" cannot be used: another station has it\n");
    EXPECT_EQ(refusal({"show", "Barn"}),
              "vigil: no station is called \"Barn\" in " + site() + "; there are: Home, Shed\n");
}

TEST_F(SiteCommand, aFeedsSecretsAreNotShown) {
    run({"site", "create"});
    const Outcome made = run({"station", "create", "Home", "--feed", "upload://127.0.0.1:8090/?id=0A1B2C3D"});
    EXPECT_EQ(made.errors, "");
    EXPECT_THAT(made.results, testing::Not(HasSubstr("0A1B2C3D")));
    EXPECT_THAT(run({"station", "list", "--json"}).results, testing::Not(HasSubstr("0A1B2C3D")));
}

TEST_F(SiteCommand, removesAStationWithItsMonitorsOnlyWhereThatIsSaid) {
    run({"site", "create"});
    run({"station", "create", "Home"});
    EXPECT_EQ(run({"monitor", "create", "Frost"}).status, ExitStatus::Yes);
    EXPECT_THAT(run({"station", "list"}).results, StartsWith("Home (1 monitor, metric units)"));
    const Outcome refused = run({"station", "remove", "Home"});
    EXPECT_EQ(refused.status, ExitStatus::BadInput);
    EXPECT_EQ(refused.errors, "vigil: \"Home\" has monitors (Frost); --with-monitors removes them, too\n");
    EXPECT_EQ(run({"station", "remove", "Home", "--with-monitors"}).results,
              "Removed \"Home\" and its monitors from " + site() + ".\n");
    EXPECT_EQ(run({"monitor", "list", "--json"}).results, "");
}

TEST_F(SiteCommand, copiesOutAndBackInEitherForm) {
    run({"site", "create"});
    run({"station", "create", "Home", "--feed", "simulated:"});
    run({"monitor", "create", "Frost", "--active"});
    const std::string before = lines();
    EXPECT_EQ(run({"site", "export", at("copy")}).results, "Copied " + site() + " to " + at("copy") + ".\n");
    EXPECT_EQ(run({"site", "export", "--json", at("lines")}).status, ExitStatus::Yes);
    const Outcome again = run({"site", "export", at("copy")});
    EXPECT_EQ(again.status, ExitStatus::BadInput);
    EXPECT_EQ(again.errors, "vigil: " + at("copy") + ": is there already; --force replaces it\n");
    EXPECT_EQ(run({"site", "export", at("copy"), "--force"}).status, ExitStatus::Yes);
    for (const char* form : {"copy", "lines"}) {
        run({"station", "edit", "Home", "--units", "us"});
        EXPECT_NE(lines(), before);
        const Outcome refused = run({"site", "import", at(form)});
        EXPECT_EQ(refused.status, ExitStatus::BadInput);
        EXPECT_EQ(refused.errors,
                  "vigil: " + site() + ": is there already, and was left as it is; --force replaces it\n");
        EXPECT_EQ(run({"site", "import", at(form), "--force"}).results,
                  "Made " + site() + " from " + at(form) + ": 1 stations, 1 monitors.\n");
        EXPECT_EQ(lines(), before);
    }
    EXPECT_THAT(run({"monitor", "show", "Frost"}).results, StartsWith("Frost (active, station Home)"));
}

TEST_F(SiteCommand, anImportTellsWhatItDoesNotUnderstand) {
    m_folder.write("nonsense", "nonsense");
    const Outcome outcome = run({"site", "import", at("nonsense")});
    EXPECT_EQ(outcome.status, ExitStatus::BadInput);
    EXPECT_EQ(outcome.errors,
              "vigil: " + at("nonsense") + ": is neither a copy of a site nor a file of monitors\n");
}

TEST_F(SiteCommand, aSiteThatIsRunIsCopiedButNotReplacedNorVacuumed) {
    run({"site", "create"});
    const auto running = SiteFile::open(site(), Access::Write);
    EXPECT_EQ(run({"site", "export", at("copy")}).status, ExitStatus::Yes);
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"site", "import", at("copy"), "--force"},
          std::vector<std::string>{"site", "vacuum"}}) {
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.status, ExitStatus::Environment);
        EXPECT_THAT(outcome.errors, HasSubstr("process " + std::to_string(getpid()) + " runs this site"));
    }
    EXPECT_THAT(run({"site", "show"}).results,
                HasSubstr("run by    process " + std::to_string(getpid()) + "\n"));
}

TEST_F(SiteCommand, showsWhatIsInASite) {
    run({"site", "create"});
    run({"station", "create", "Home"});
    {
        const auto open = SiteFile::open(site(), Access::Write);
        SiteWriter writer(*open.value());
        writer.putEffect({.id = 1, .queued = Date(0)});
    }
    EXPECT_THAT(
        run({"site", "show"}).results,
        testing::MatchesRegex(site() + " \\(format 2, [0-9]+ KiB\\)\n"
                                       "  stations  1\n"
                                       "  monitors  0\n"
                                       "  fires     0, 0 of them open\n"
                                       "  actions   1, 1 of them without an end, since 2001-01-01T00:00:00Z\n"
                                       "  run by    nobody, closed cleanly\n"));
    EXPECT_THAT(
        run({"site", "show", "--json"}).results,
        testing::MatchesRegex(
            "\\{\"site\":\"" + site() +
            "\",\"format\":2,\"bytes\":[0-9]+,\"stations\":1,\"monitors\":0,\"fires\":0,"
            "\"openFires\":0,\"effects\":1,\"openEffects\":1,\"oldestEffect\":\"2001-01-01T00:00:00Z\","
            "\"clean\":true,\"process\":null\\}\n"));
}

TEST_F(SiteCommand, checksASite) {
    EXPECT_EQ(run({"site", "check"}).status, ExitStatus::BadInput);
    run({"site", "create"});
    const Outcome whole = run({"site", "check"});
    EXPECT_EQ(whole.status, ExitStatus::Yes);
    EXPECT_EQ(whole.results, site() + " holds together.\n");
    {
        const auto open = SiteFile::open(site(), Access::Write);
        const auto home = open.value()->addStation({.name = "Home"}).value();
        ASSERT_TRUE(open.value()->addPlugIn({.station = home, .title = "Frost", .archive = "nonsense"}));
    }
    const Outcome damaged = run({"site", "check"});
    EXPECT_EQ(damaged.status, ExitStatus::No) << damaged.results;
    EXPECT_EQ(damaged.results, "the monitor \"Frost\": no archive\n");
    EXPECT_EQ(run({"site", "vacuum"}).status, ExitStatus::Yes);
}

}  // namespace
}  // namespace vigil
