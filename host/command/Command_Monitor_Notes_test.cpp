#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/command/CommandLine.hpp"
#include "host/command/Commands.hpp"
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

class MonitorCommandNotes : public testing::Test {
  protected:
    MonitorCommandNotes() {
        fs::create_directories(m_folder);
        setenv("XDG_CONFIG_HOME", m_folder.c_str(), 1);
        EXPECT_TRUE(SiteFile::create(site()));
        for (const char* name : {"Roof", "Pond"})
            EXPECT_TRUE(SiteFile::open(site(), Access::Write).value()->addStation({.name = name}));
    }
    ~MonitorCommandNotes() override {
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

    fs::path m_folder =
        fs::path(testing::TempDir()) /
        ("monitor-notes-" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
};

TEST_F(MonitorCommandNotes, saysWhatIsAmissWithoutRefusingIt) {
    fs::create_directories(scripts());
    std::ofstream(scripts() + "/there.sh") << "#!/bin/sh\n";
    EXPECT_EQ(run({"create", "A", "--condition", "windgust.unitValue > 1", "--action",
                   "Run script=there.sh a", "--action", "Run script=missing.sh b"})
                  .errors,
              "vigil: there is no script \"missing.sh\" in " + scripts() +
                  " yet\nvigil: note: no known reading is called windgust; did you mean windGust?\n");
    EXPECT_EQ(
        run({"edit", "A", "--condition", "windGust.unitValue > 1", "--action", "Run script=there.sh"}).errors,
        "");
}

TEST_F(MonitorCommandNotes, aTitleIsTrimmedAndAnothersIsRefusedWithTheReason) {
    EXPECT_TRUE(run({"create", " A ", "--action", "Speak Text=a"}).results.starts_with("A ("));
    run({"create", "B"});
    EXPECT_EQ(run({"edit", "B", "--title", "A"}).errors,
              "vigil: the title \"A\" cannot be used: another monitor has it\n");
    EXPECT_EQ(run({"create", "a\x1b[2Jb"}).errors,
              "vigil: a monitor's title takes no line ends, tabs or other control characters\n");
    EXPECT_EQ(run({"edit", "B", "--title", " "}).errors, "vigil: a monitor needs a title\n");
}

TEST_F(MonitorCommandNotes, aMistypedConditionIsGuessedAtAndLeavesNoMonitor) {
    const Outcome outcome = run({"create", "A", "--condition", "windGust > 60"});
    EXPECT_TRUE(
        outcome.errors.ends_with("vigil: did you mean windGust.unitValue?\nvigil: no monitor was made\n"))
        << outcome.errors;
    run({"create", "A", "--condition", "t.unitValue < 0"});
    EXPECT_TRUE(
        run({"edit", "A", "--condition", "t.unitValue = 0"})
            .errors.ends_with("vigil: did you mean ==, for equal?\nvigil: the monitor was left as it was\n"));
}

TEST_F(MonitorCommandNotes, aWaitIsANumberOfMinutes) {
    for (const char* typed : {"5m", "-1", "1e10", "", "nan"}) {
        const Outcome outcome = run({"create", "A", std::string("--retrigger=") + typed});
        EXPECT_EQ(outcome.status, ExitStatus::BadInput) << typed;
        if (*typed) {
            EXPECT_NE(outcome.errors.find("expected minutes, 0 to 1000000000"), std::string::npos)
                << outcome.errors;
        }
    }
}

TEST_F(MonitorCommandNotes, aWaitThatIsUnderWayGoesOnAndThatIsSaid) {
    run({"create", "A", "--condition", "t.unitValue < 0", "--active", "--action", "Speak Text=a"});
    {
        const auto open = SiteFile::open(site(), Access::Write);
        PlugInRecord record = *open.value()->plugInTitled("A").value();
        const auto named = record.archive.find("\"retriggerDate\"");
        ASSERT_NE(named, std::string::npos) << record.archive;
        const auto begin = record.archive.find(':', record.archive.find("$date", named)) + 1;
        record.archive.replace(begin, record.archive.find('}', begin) - begin, "4000000000.0");
        ASSERT_TRUE(open.value()->editPlugIn(record));
    }
    EXPECT_TRUE(run({"edit", "A", "--retrigger", "5"}).errors.starts_with("vigil: it waits until 2127-10-"));
    EXPECT_EQ(run({"edit", "A", "--on-change", "true"}).errors, "") << "the wait was not touched";
    EXPECT_EQ(run({"edit", "A", "--active=false", "--retrigger", "6"}).errors, "") << "it rests";
}

}  // namespace
}  // namespace vigil
