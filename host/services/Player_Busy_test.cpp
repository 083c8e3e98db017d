#include <future>

#include <gmock/gmock.h>
#include <signal.h>

#include "host/services/HelperProcess.hpp"
#include "host/services/Player.hpp"
#include "host/services/testing/HeldProcess.hpp"
#include "host/services/testing/PlayerBench.hpp"

// A player with much to do, and one that does not go.

namespace vigil {
namespace {

using std::chrono::duration_cast;
using std::chrono::milliseconds;
using testing::HasSubstr;

constexpr double kLong = 118;  // seconds, a little less than a sound may last

class BusyPlayer : public PlayerBench {
  protected:
    /// A file whose decoding takes as long as that of any.
    std::string longSound() const { return write("long.wav", toneWav(kLong, 8000)); }
};

TEST_F(BusyPlayer, ManyFilesToDecodeKeepNeitherThePingsNorASpeechWaiting) {
    const std::string file = longSound();
    player(options());
    end(check(file));
    const auto before = Steady::now();
    ASSERT_EQ(end(check(file)).outcome, PlayOutcome::Finished);
    const auto one = duration_cast<milliseconds>(Steady::now() - before) + milliseconds(20);
    auto given = options();
    given.timing.answer = 8 * one;
    given.timing.slack = milliseconds(4000) + 16 * one;
    given.setup.program = toneProgram(0.1);
    player(given);
    std::vector<std::size_t> checks;
    for (int i = 0; i < 40; ++i)
        checks.push_back(check(file));
    const auto speech = speak("Gale");
    EXPECT_EQ(end(speech).outcome, PlayOutcome::Finished) << end(speech).detail;
    for (const auto number : checks)
        ASSERT_EQ(end(number).outcome, PlayOutcome::Finished) << number << ": " << end(number).detail;
    EXPECT_LT(*heard(speech).began, heard(checks.back()).ended) << "a speech goes first";
}

TEST_F(BusyPlayer, ASpeechThatIsNotMadeInTimeEndsAlone) {
    auto given = options();
    given.setup.program = program("sleep 600\n");
    given.setup.programTime = 600000;
    given.timing.slack = milliseconds(2500);
    given.timing.answer = milliseconds(20000);
    player(given);
    const auto sound = play(tone("a.wav", 60));
    ASSERT_TRUE(begins(sound));
    const int before = m_player->process();
    const auto speech = speak("Gale");
    EXPECT_EQ(end(speech).outcome, PlayOutcome::TimedOut);
    EXPECT_EQ(m_player->process(), before);
    EXPECT_EQ(m_player->active(), 1u) << "the sound goes on";
    EXPECT_EQ(end(play(tone("b.wav", 0.1))).outcome, PlayOutcome::Finished);
}

TEST_F(BusyPlayer, LongSoundsAreHeardBesideEachOtherUpToABoundOfTheirOwn) {
    const std::string file = longSound();
    player(options());
    std::vector<std::size_t> sounds;
    for (int i = 0; i < 13; ++i)
        sounds.push_back(play(file));
    EXPECT_EQ(end(sounds.back()).outcome, PlayOutcome::Failed) << "it could be played at another time";
    EXPECT_THAT(end(sounds.back()).detail, HasSubstr("more than 1500 seconds of sound"));
    sounds.pop_back();
    for (const auto sound : sounds)
        EXPECT_TRUE(begins(sound));
}

TEST_F(BusyPlayer, WhatTheProgramThatSpeaksHasStartedEndsWithThePlayer) {
    auto given = options();
    given.setup.program = program("sleep 600 & echo > " + path("begun") + "; sleep 600\n");
    given.setup.programTime = 600000;
    given.timing.slack = milliseconds(600000);
    ::setenv("BENCH_MARK", m_folder.c_str(), 1);
    player(given);
    speak("Gale");
    EXPECT_TRUE(eventually([&] { return std::filesystem::exists(path("begun")); }));
    EXPECT_TRUE(somethingBears("BENCH_MARK=" + m_folder));
    m_player->stop();
    EXPECT_TRUE(eventually([&] { return !somethingBears("BENCH_MARK=" + m_folder); }));
    ::unsetenv("BENCH_MARK");
}

TEST_F(BusyPlayer, TheProgramThatSpeaksHasNotThePlayersOwnBounds) {
    auto given = options();
    given.setup.program = program("ulimit -d > " + path("bound") + "\ncat " + tone("v.wav", 0.05) + "\n");
    player(given);
    EXPECT_EQ(end(speak("Gale")).outcome, PlayOutcome::Finished);
    ASSERT_EQ(std::system(("ulimit -d > " + path("own")).c_str()), 0);
    EXPECT_EQ(fileText(path("bound")), fileText(path("own")));
}

TEST_F(BusyPlayer, OneThatCannotBeWaitedForKeepsNobodyWaiting) {
    auto given = options();
    given.timing.answer = milliseconds(2000);
    player(given);
    const auto sound = play(tone("a.wav", 60));
    ASSERT_TRUE(begins(sound));
    const int number = m_player->process();
    HeldProcess held(number);
    if (!held.holds()) GTEST_SKIP() << "no process may be held here";
    ::kill(number, SIGSTOP);
    const PlayEnd ended = end(sound);
    EXPECT_EQ(ended.outcome, PlayOutcome::TimedOut) << ended.detail;
    auto stopped = std::async(std::launch::async, [&] { m_player->stop(); });
    EXPECT_EQ(stopped.wait_for(kPatience), std::future_status::ready);
    held.release();
    stopped.wait();
    EXPECT_TRUE(eventually([&] {
        HelperProcess::reap();
        return ::kill(number, 0) != 0;
    }));
}

}  // namespace
}  // namespace vigil
