#include "host/command/Doctor.hpp"

#include <cstdio>
#include <stdexcept>

#include <gmock/gmock.h>

#include "host/command/CommandLine.hpp"
#include "host/command/Commands.hpp"

namespace vigil {
namespace {

using testing::HasSubstr;

struct Outcome {
    ExitStatus status;
    std::string results;
};

template <class Run>
Outcome outcomeOf(Run run) {
    std::FILE* results = std::tmpfile();
    Output output(results, stderr);
    Outcome outcome{run(output), {}};
    output.flush();
    std::rewind(results);
    for (int c = std::fgetc(results); c != EOF; c = std::fgetc(results))
        outcome.results += static_cast<char>(c);
    std::fclose(results);
    return outcome;
}

Outcome examined(const std::vector<Probe>& probes, bool json = false) {
    return outcomeOf([&](Output& output) { return examine(probes, json, output); });
}

Probe probe(const std::string& name, Diagnosis found) {
    return {name, [found = std::move(found)] { return found; }};
}

const Probe kWell = probe("shell", Diagnosis::well("/bin/sh"));
const Probe kFinding = probe("speech", Diagnosis::finding("no \"voice\"", "install one"));
const Probe kUnknown = probe("site folder", Diagnosis::unknown("HOME is not set", "set HOME"));

TEST(Doctor, TellsOfEachProbeInALineWithItsRemedy) {
    EXPECT_EQ(examined({kWell, kFinding, kUnknown}).results,
              "shell        ok       /bin/sh\n"
              "speech       finding  no \"voice\": install one\n"
              "site folder  unknown  HOME is not set: set HOME\n");
}

TEST(Doctor, WritesOneJsonObjectALine) {
    EXPECT_EQ(
        examined({kWell, kFinding}, /*json=*/true).results,
        "{\"probe\":\"shell\",\"state\":\"ok\",\"says\":\"/bin/sh\"}\n"
        "{\"probe\":\"speech\",\"state\":\"finding\",\"says\":\"no \\\"voice\\\"\",\"remedy\":\"install "
        "one\"}\n");
}

TEST(Doctor, EndsWith0WhenAllIsWell1WithFindingsAnd3WhenItCouldNotLook) {
    EXPECT_EQ(examined({kWell, kWell}).status, ExitStatus::Yes);
    EXPECT_EQ(examined({kWell, kFinding, kWell}).status, ExitStatus::No);
    EXPECT_EQ(examined({kUnknown, kFinding}).status, ExitStatus::Environment);
    EXPECT_EQ(examined({kFinding, kUnknown, kWell}).status, ExitStatus::Environment);
}

TEST(Doctor, AProbeThatThrowsHasNotLookedAndTheOthersStillDo) {
    const Probe throwing{"sound", []() -> Diagnosis { throw std::runtime_error("out of files"); }};
    const Outcome outcome = examined({throwing, kWell});
    EXPECT_EQ(outcome.status, ExitStatus::Environment);
    EXPECT_THAT(outcome.results, HasSubstr("sound  unknown  out of files"));
    EXPECT_THAT(outcome.results, HasSubstr("shell  ok"));
}

TEST(Doctor, OnThisMachineItLooksAtFourteenThingsAndFindsItsOwnInstallationAndTheShell) {
    const Outcome outcome = outcomeOf([](Output& output) {
        return runCommandLine({"doctor", "--json"}, allCommands(), output, VIGIL_BINARY_DIR "/bin");
    });
    EXPECT_EQ(std::count(outcome.results.begin(), outcome.results.end(), '\n'), 14);
    EXPECT_THAT(outcome.results, HasSubstr("{\"probe\":\"module\",\"state\":\"ok\""));
    EXPECT_THAT(outcome.results, HasSubstr("{\"probe\":\"helper\",\"state\":\"ok\""));
    EXPECT_THAT(outcome.results, HasSubstr("{\"probe\":\"shell\",\"state\":\"ok\""));
    const bool unknown = outcome.results.find("\"state\":\"unknown\"") != std::string::npos;
    const bool finding = outcome.results.find("\"state\":\"finding\"") != std::string::npos;
    EXPECT_EQ(outcome.status, unknown ? ExitStatus::Environment : finding ? ExitStatus::No : ExitStatus::Yes);
}

}  // namespace
}  // namespace vigil
