#include "host/services/ScriptRunner.hpp"

#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

#include "host/services/ScriptEnvironment.hpp"
#include "host/services/testing/ScriptBench.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

using ScriptRuns = ScriptBench;

TEST_F(ScriptRuns, SucceedsWithItsLastLinesAndDatesInOrder) {
    const ScriptResult result = run("echo one; echo two >&2");
    EXPECT_EQ(result.outcome, ScriptResult::Succeeded);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.lastLines, "one\ntwo\n");
    EXPECT_EQ(result.outputBytes, 8u);
    EXPECT_FALSE(result.truncated);
    EXPECT_EQ(result.failure, "");
    EXPECT_GT(result.queued.secondsSinceReference(), 0);
    EXPECT_LE(result.queued, result.started);
    EXPECT_LE(result.started, result.ended);
}

TEST_F(ScriptRuns, FailsWithTheExitCodeOfTheScript) {
    const ScriptResult result = run("echo no luck; exit 37");
    EXPECT_EQ(result.outcome, ScriptResult::Failed);
    EXPECT_EQ(result.exitCode, 37);
    EXPECT_EQ(result.lastLines, "no luck\n");
}

TEST_F(ScriptRuns, AnEmptyTextSucceeds) {
    const ScriptResult result = run("");
    EXPECT_EQ(result.outcome, ScriptResult::Succeeded);
    EXPECT_EQ(result.outputBytes, 0u);
}

TEST_F(ScriptRuns, ArgumentsArriveAsGivenEmptyWordsBlanksAndQuotesIncluded) {
    const ScriptResult result = run("printf '%s' $#; for a in \"$@\"; do printf '[%s]' \"$a\"; done",
                                    {"a", "", "b c", "it's \"so\"", "$HOME *", "-n", "ü"});
    EXPECT_EQ(result.lastLines, "7[a][][b c][it's \"so\"][$HOME *][-n][ü]");
}

TEST_F(ScriptRuns, TheFirstLineNamesTheProgramAndOneArgument) {
    const ScriptResult result =
        run("#!/usr/bin/awk -f\nBEGIN { print ARGC, ARGV[1], ARGV[2] \"|\" }\n", {"x y", ""});
    EXPECT_EQ(result.outcome, ScriptResult::Succeeded) << result.sentence();
    EXPECT_EQ(result.lastLines, "3 x y |\n");
}

TEST_F(ScriptRuns, TheProgramMayBeFoundThroughThePath) {
    const ScriptResult result = run("#!/usr/bin/env -S awk -f\nBEGIN { print 6 * 7 }\n");
    EXPECT_EQ(result.outcome, ScriptResult::Succeeded) << result.sentence();
    EXPECT_EQ(result.lastLines, "42\n");
}

TEST_F(ScriptRuns, AMissingProgramIsNotStartedAndNamed) {
    const ScriptResult result = run("#!/no/such/program -x\nrubbish");
    EXPECT_EQ(result.outcome, ScriptResult::NotStarted);
    EXPECT_EQ(result.failure, "there is no program /no/such/program");
    EXPECT_EQ(result.started, result.ended);
}

TEST_F(ScriptRuns, LinesThatEndWithACarriageReturnAreExplained) {
    const ScriptResult result = run("#!/bin/sh\r\necho hi\r\n");
    EXPECT_EQ(result.outcome, ScriptResult::NotStarted);
    EXPECT_EQ(result.failure, "its first line ends with a carriage return; its lines must end as on Linux");
}

TEST_F(ScriptRuns, TheScriptLiesInAFolderThatNobodyElseCanEnter) {
    const ScriptResult result = run("stat -c %a \"$0\" \"$(dirname \"$0\")\"; dirname \"$(dirname \"$0\")\"");
    EXPECT_EQ(result.lastLines, "700\n700\n" + m_folder + "\n");
}

TEST_F(ScriptRuns, WhereTheRunTimeFolderTakesNothingAnotherIsUsed) {
    ::setenv("XDG_RUNTIME_DIR", path("missing").c_str(), 1);
    ::setenv("TMPDIR", m_folder.c_str(), 1);
    const ScriptResult result = run("dirname \"$(dirname \"$0\")\"");
    ::unsetenv("TMPDIR");
    EXPECT_EQ(result.lastLines, m_folder + "\n");
}

TEST_F(ScriptRuns, WorksInTheHomeFolder) {
    ScriptRequest made = request("pwd -P");
    made.environment.emplace_back("HOME", m_folder);
    EXPECT_EQ(run(std::move(made)).lastLines, m_folder + "\n");
}

TEST_F(ScriptRuns, StandardInputIsEmpty) {
    EXPECT_EQ(run("read line || echo nothing to read").lastLines, "nothing to read\n");
}

TEST_F(ScriptRuns, InheritsNoDescriptorOfTheHost) {
    const int leak = ::open("/dev/null", O_RDONLY);  // without O_CLOEXEC, as a careless library might
    ASSERT_GE(leak, 3);
    // the fourth is what `ls` lists
    EXPECT_EQ(run("ls /proc/self/fd | tr '\\n' ' '").lastLines, "0 1 2 3 ");
    ::close(leak);
}

TEST_F(ScriptRuns, StartsWithAllSignalsAsLinuxHasThem) {
    const std::string lines = run("grep -E '^Sig(Blk|Ign)' /proc/self/status").lastLines;
    unsigned long long blocked = 1;
    unsigned long long ignored = 1;
    ASSERT_EQ(std::sscanf(lines.c_str(), "SigBlk:\t%llx\nSigIgn:\t%llx", &blocked, &ignored), 2) << lines;
    EXPECT_EQ(blocked, 0u);
    // numbers from 32 on are the C library's own, and some stay ignored in whatever posix_spawn starts
    EXPECT_EQ(ignored & 0x7FFFFFFFu, 0u);
}

TEST_F(ScriptRuns, KnowsTheReadingsAndInheritsNoSecretOfTheHost) {
    ::setenv("VIGIL_TEST_SECRET", "hush", 1);
    ::setenv("LC_PAPER", "C.UTF-8", 1);
    const auto readings = Readings::make({AgentProperty::number("temp", 21.5, std::nullopt),
                                          AgentProperty::text("sky", "two\nlines", std::nullopt)});
    ScriptRequest made = request(
        "echo \"$VIGIL_SITE,$VIGIL_MONITOR,$VIGIL_temp,$VIGIL_sky\"; "
        "echo \"${VIGIL_TEST_SECRET-none} $LC_PAPER\"");
    for (auto& entry : scriptEnvironment("Pier 7", "Frost", *readings))
        made.environment.push_back(std::move(entry));
    EXPECT_EQ(run(std::move(made)).lastLines, "Pier 7,Frost,21.5,two\nlines\nnone C.UTF-8\n");
    ::unsetenv("VIGIL_TEST_SECRET");
    ::unsetenv("LC_PAPER");
}

TEST_F(ScriptRuns, OfAFloodTheLastLinesAreKeptAndTheRestIsCounted) {
    const ScriptResult result = run("head -c 40000000 /dev/zero | tr '\\0' x; echo; echo the end is here");
    EXPECT_EQ(result.outcome, ScriptResult::Succeeded);
    EXPECT_EQ(result.outputBytes, 40000000u + 1 + 16);
    EXPECT_TRUE(result.truncated);
    EXPECT_EQ(result.lastLines, "the end is here\n");
}

TEST_F(ScriptRuns, AFloodWithoutEndIsStoppedByTheTimeOut) {
    ScriptRequest made = request("exec yes");
    made.timeoutSeconds = 1;
    const ScriptResult result = run(std::move(made));
    EXPECT_EQ(result.outcome, ScriptResult::TimedOut);
    EXPECT_TRUE(result.truncated);
    EXPECT_EQ(result.lastLines.size(), kLastLines);
}

TEST_F(ScriptRuns, ARequestThatCannotBeRunIsRefusedWithTheReason) {
    const ScriptResult result = run("true", {std::string("a\0b", 3)});
    EXPECT_EQ(result.outcome, ScriptResult::Refused);
    EXPECT_EQ(result.failure, "an argument holds a NUL character");
}

TEST_F(ScriptRuns, AMissingHelperIsSaid) {
    ScriptRunner::Options given = options();
    given.helper = "/no/such/helper";
    runner(std::move(given));
    const ScriptResult result = run("true");
    EXPECT_EQ(result.outcome, ScriptResult::NotStarted);
    EXPECT_EQ(result.failure, "the helper /no/such/helper cannot be started: No such file or directory");
    EXPECT_TRUE(m_runner->running().empty());
}

TEST_F(ScriptRuns, AHelperThatEndsWithoutAWordDoesNotHurtTheHost) {
    ScriptRunner::Options given = options();
    given.helper = "/bin/false";
    runner(std::move(given));
    // more than a socket holds, so that it is still being sent when nobody reads any more
    const ScriptResult result = run("#" + std::string(900000, 'x'));
    EXPECT_EQ(result.outcome, ScriptResult::NotStarted);
    EXPECT_EQ(result.failure, "its helper ended with exit status 1");
}

TEST_F(ScriptRuns, AHelperThatTalksNonsenseIsEnded) {
    const std::string program = path("nonsense");
    std::ofstream(program) << "#!/bin/sh\necho nonsense >&0\nexec sleep 1000\n";
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    ScriptRunner::Options given = options();
    given.helper = program;
    runner(std::move(given));
    const ScriptResult result = run("true");
    EXPECT_EQ(result.outcome, ScriptResult::NotStarted);
    EXPECT_EQ(result.failure, "its helper sent what cannot be understood");
}

TEST_F(ScriptRuns, ALongScriptArrivesWhole) {
    const ScriptResult result = run("#" + std::string(1000000, 'x') + "\necho arrived");
    EXPECT_EQ(result.lastLines, "arrived\n");
}

TEST(HelperPath, LiesBesideTheRunningExecutable) {
    EXPECT_EQ(helperPath(), VIGIL_BINARY_DIR "/tests/vigil-helper");
}

TEST(HelperPath, LiesBesideTheProgramOrWhereAnInstallationPutsIt) {
    const TemporaryFolder prefix;
    const std::string bin = prefix.path() + "/bin";
    EXPECT_EQ(helperPath(bin), bin + "/vigil-helper") << "where it is missing, the first place is named";
    std::filesystem::create_directories(prefix.path() + "/libexec/vigil");
    std::filesystem::create_directories(bin);
    prefix.write("libexec/vigil/vigil-helper", "");
    const auto executable = std::filesystem::perms::owner_all;
    EXPECT_EQ(helperPath(bin), bin + "/vigil-helper") << "what cannot be run is no helper";
    std::filesystem::permissions(prefix.path() + "/libexec/vigil/vigil-helper", executable);
    EXPECT_EQ(helperPath(bin), bin + "/../libexec/vigil/vigil-helper");
    prefix.write("bin/vigil-helper", "");
    std::filesystem::permissions(bin + "/vigil-helper", executable);
    EXPECT_EQ(helperPath(bin), bin + "/vigil-helper");
}

}  // namespace
}  // namespace vigil
