#include <signal.h>

#include "host/services/ScriptRunner.hpp"
#include "host/services/testing/ScriptBench.hpp"

// How scripts end that do not end by themselves, and what becomes of what they leave behind. Each test ends
// with a look for processes of its scripts (`ScriptBench::TearDown`).

namespace vigil {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// A process in a session of its own that no TERM ends and that has closed the script's output.
constexpr const char* kEscape =
    "setsid sh -c 'trap \"\" TERM HUP INT; echo $$ > $D/escaped; while :; do sleep 1; done' "
    "</dev/null >/dev/null 2>&1 &\n"
    "while ! [ -s $D/escaped ]; do sleep 0.01; done\n";

class ScriptEnds : public ScriptBench {
  protected:
    ScriptRequest withTimeout(std::string source, int seconds) {
        ScriptRequest made = request(std::move(source));
        made.timeoutSeconds = seconds;
        return made;
    }
    void expectEscapedIsGone() {
        const std::string number = fileText(path("escaped"));
        ASSERT_FALSE(number.empty());
        EXPECT_FALSE(somethingBears(m_mark));
    }
};

TEST_F(ScriptEnds, AtTheTimeOutAScriptMayStillClearUp) {
    ScriptRunner::Options given = options();
    given.timing.termGrace = milliseconds(20000);
    runner(std::move(given));
    const auto begin = steady_clock::now();
    const ScriptResult result =
        run(withTimeout("trap 'echo bye; exit 0' TERM\necho hi\nwhile :; do sleep 0.02; done", 2));
    EXPECT_EQ(result.outcome, ScriptResult::TimedOut);
    // between the two the shell may say that what it waited for has ended too
    EXPECT_TRUE(result.lastLines.ends_with("bye\n")) << result.lastLines;
    EXPECT_GE(steady_clock::now() - begin, milliseconds(2000));
    EXPECT_LT(steady_clock::now() - begin, milliseconds(20000)) << "the grace is not waited out";
}

TEST_F(ScriptEnds, OneThatIgnoresTermIsKilled) {
    const ScriptResult result = run(withTimeout("trap '' TERM\necho hi\nwhile :; do sleep 1; done", 1));
    EXPECT_EQ(result.outcome, ScriptResult::TimedOut);
    EXPECT_EQ(result.lastLines, "hi\n");
}

TEST_F(ScriptEnds, TheTimeOutReachesAllThatTheScriptStarted) {
    const ScriptResult result = run(withTimeout(std::string(kEscape) + "sleep 1000 | sleep 1000", 2));
    EXPECT_EQ(result.outcome, ScriptResult::TimedOut);
    expectEscapedIsGone();
}

TEST_F(ScriptEnds, TheTimeOutCountsFromTheStartOfEach) {
    runner();
    const auto first = submit(withTimeout("sleep 1.4", 2));
    const auto second = submit(withTimeout("sleep 1.4", 2));
    EXPECT_EQ(result(first).outcome, ScriptResult::Succeeded);
    EXPECT_EQ(result(second).outcome, ScriptResult::Succeeded);
}

TEST_F(ScriptEnds, AProcessThatHoldsTheOutputHoldsNothingUp) {
    const auto begin = steady_clock::now();
    const ScriptResult result = run("sleep 1000 &\necho hi");
    EXPECT_EQ(result.outcome, ScriptResult::Succeeded);
    EXPECT_EQ(result.lastLines, "hi\n");
    EXPECT_LT(steady_clock::now() - begin, milliseconds(30000));
    EXPECT_FALSE(somethingBears(m_mark));
}

TEST_F(ScriptEnds, WhatAScriptLeavesMayFinishWithinTheGrace) {
    ScriptRunner::Options given = options();
    given.timing.leftoverGrace = milliseconds(20000);
    runner(std::move(given));
    EXPECT_EQ(run("(sleep 0.1; echo late) &\necho early").lastLines, "early\nlate\n");
}

TEST_F(ScriptEnds, AProcessInASessionOfItsOwnIsEndedToo) {
    const ScriptResult result = run(std::string(kEscape) + "exit 0");
    EXPECT_EQ(result.outcome, ScriptResult::Succeeded);
    expectEscapedIsGone();
}

TEST_F(ScriptEnds, AnOrphanOfAnOrphanIsEndedToo) {
    const ScriptResult result =
        run("(setsid sh -c \"setsid sh -c 'echo $$ > $D/escaped; exec sleep 1000' &\" &)\n"
            "while ! [ -s $D/escaped ]; do sleep 0.01; done\n");
    EXPECT_EQ(result.outcome, ScriptResult::Succeeded);
    expectEscapedIsGone();
}

TEST_F(ScriptEnds, OneThatKillsItsOwnGroupIsSignalled) {
    const ScriptResult result = run("sleep 1000 &\nkill -KILL 0");
    EXPECT_EQ(result.outcome, ScriptResult::Signalled);
    EXPECT_EQ(result.signal, SIGKILL);
}

TEST_F(ScriptEnds, NoSignalToItsParentButKillEndsTheHelper) {
    const ScriptResult result =
        run("for s in TERM INT HUP QUIT PIPE USR1 ALRM TSTP; do kill -$s $PPID; done\n"
            "echo still here");
    EXPECT_EQ(result.outcome, ScriptResult::Succeeded);
    EXPECT_EQ(result.lastLines, "still here\n");
}

TEST_F(ScriptEnds, WhereTheHelperIsKilledNothingOfTheScriptIsLeft) {
    const ScriptResult result = run(std::string(kEscape) + "sleep 1000 &\nkill -KILL $PPID; sleep 1000");
    EXPECT_EQ(result.outcome, ScriptResult::Interrupted);
    EXPECT_EQ(result.failure, "its helper was ended by signal 9");
    expectEscapedIsGone();
    EXPECT_EQ(run("echo next").lastLines, "next\n");
}

TEST_F(ScriptEnds, AHelperThatHangsIsKilledAfterItsTime) {
    ScriptRunner::Options given = options();
    given.timing = {.second = milliseconds(200),
                    .termGrace = milliseconds(100),
                    .leftoverGrace = milliseconds(100),
                    .answerGrace = milliseconds(1500)};
    runner(std::move(given));
    const ScriptResult result = run(withTimeout("kill -STOP $PPID; sleep 1000", 1));
    EXPECT_EQ(result.outcome, ScriptResult::Interrupted);
    EXPECT_EQ(result.failure, "its helper did not answer in time and was ended");
}

TEST_F(ScriptEnds, StopEndsWhatRunsAndWhatWaitsWithinASecondOrSo) {
    runner();
    const auto obeys = submit(request("echo begun; echo > $D/one; sleep 1000"));
    const auto waits = submit(request("echo never > $D/never"));
    ScriptRequest other = request("trap '' TERM; echo > $D/two; while :; do sleep 1; done");
    other.station = "Hill";
    const auto ignores = submit(other);
    ASSERT_TRUE(appears("one") && appears("two"));
    const auto begin = steady_clock::now();
    m_runner->stop();
    EXPECT_LT(steady_clock::now() - begin, milliseconds(10000));
    for (const auto number : {obeys, waits, ignores}) {
        ASSERT_EQ(answers(number), 1u);
        EXPECT_EQ(result(number).outcome, ScriptResult::Interrupted);
    }
    EXPECT_EQ(result(obeys).lastLines, "begun\n");
    EXPECT_EQ(result(obeys).failure, "the host stopped while it ran");
    EXPECT_EQ(result(waits).failure, "the host stopped before its turn came");
    EXPECT_FALSE(std::filesystem::exists(path("never")));
    EXPECT_EQ(m_runner->queued("Harbour"), 0u);
    EXPECT_TRUE(m_runner->running().empty());
}

TEST_F(ScriptEnds, StopKillsAHelperThatHangsAtItsDeadline) {
    runner();
    const auto number = submit(request("kill -STOP $PPID; echo > $D/begun; sleep 1000"));
    ASSERT_TRUE(appears("begun"));
    const auto begin = steady_clock::now();
    m_runner->stop(milliseconds(300));
    EXPECT_GE(steady_clock::now() - begin, milliseconds(300));
    EXPECT_LT(steady_clock::now() - begin, milliseconds(10000));
    ASSERT_EQ(answers(number), 1u);
    EXPECT_EQ(result(number).outcome, ScriptResult::Interrupted);
    EXPECT_EQ(result(number).failure, "the host stopped and its helper did not end in time");
}

TEST_F(ScriptEnds, StopOftenAndFromSeveralThreadsIsOneStop) {
    runner();
    const auto number = submit(request("sleep 1000"));
    std::thread other([this] { m_runner->stop(); });
    m_runner->stop();
    EXPECT_EQ(answers(number), 1u);
    other.join();
    m_runner->stop();
    EXPECT_EQ(answers(number), 1u);
}

TEST_F(ScriptEnds, AfterStopARequestIsInterruptedAtOnce) {
    runner().stop();
    const auto number = submit(request("true"));
    ASSERT_EQ(answers(number), 1u);
    EXPECT_EQ(result(number).outcome, ScriptResult::Interrupted);
    EXPECT_EQ(result(number).failure, "the host has stopped");
}

}  // namespace
}  // namespace vigil
