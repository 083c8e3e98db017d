#include <cstdio>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/command/CommandLine.hpp"
#include "host/command/Commands.hpp"
#include "host/command/SiteChoice.hpp"
#include "host/site/SiteFile.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

using testing::StartsWith;

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

class SiteMistakes : public testing::Test {
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

    TemporaryFolder m_folder;
};

TEST_F(SiteMistakes, standardOutputTakesLinesOnly) {
    run({"site", "create"});
    const Outcome outcome = run({"site", "export", "-"});
    EXPECT_EQ(outcome.status, ExitStatus::BadInput);
    EXPECT_EQ(outcome.errors, "vigil: standard output takes lines, not a database: - needs --json\n");
}

TEST_F(SiteMistakes, aSiteInTheWayIsAMistakeAlsoWhileItRuns) {
    run({"site", "create"});
    run({"site", "export", at("copy")});
    const auto running = SiteFile::open(site(), Access::Write);
    const Outcome outcome = run({"site", "import", at("copy")});
    EXPECT_EQ(outcome.status, ExitStatus::BadInput);
    EXPECT_EQ(outcome.errors,
              "vigil: " + site() + ": is there already, and was left as it is; --force replaces it\n");
}

TEST_F(SiteMistakes, notesKeysThatAreNearlyThoseOfKnownReadings) {
    run({"site", "create"});
    const Outcome made = run({"station", "create", "Home", "--unit", "windspeed=kn", "--rolling",
                              "windSped mean 10", "--rolling", "waterLevelOfThePond age"});
    EXPECT_EQ(made.status, ExitStatus::Yes);
    EXPECT_EQ(made.errors,
              "vigil: note: no known reading is called windspeed; did you mean windSpeed?\n"
              "vigil: note: no known reading is called windSped; did you mean windSpeed?\n");
    EXPECT_EQ(run({"station", "edit", "Home", "--unit", "windspeed="}).errors, "") << "it is taken back";
}

TEST_F(SiteMistakes, trimsAStationsNameAndRefusesOneThatNoTableCanShow) {
    run({"site", "create"});
    EXPECT_THAT(run({"station", "create", " Home "}).results, StartsWith("Home ("));
    EXPECT_EQ(run({"station", "create", "a\nb"}).errors,
              "vigil: a station's name takes no line ends, tabs or other control characters\n");
    EXPECT_EQ(run({"station", "edit", "Home", "--name", std::string(5000, 'x')}).status,
              ExitStatus::BadInput);
    EXPECT_THAT(run({"station", "edit", "Home", "--name", "House "}).results, StartsWith("House ("));
}

TEST_F(SiteMistakes, theSiteOfTheServiceIsPointedAtWhereTheUserHasNone) {
    EXPECT_EQ(serviceHint("", at("none")), "");
    m_folder.write("some", "");
    EXPECT_EQ(serviceHint("", at("some")),
              "there is a site of the service: --site " + at("some") + ", as user vigil");
    EXPECT_EQ(serviceHint(site(), at("some")), "") << "another one was named";
}

}  // namespace
}  // namespace vigil
