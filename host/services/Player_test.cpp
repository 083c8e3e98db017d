#include "host/services/Player.hpp"

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>

#include "host/services/testing/PlayerBench.hpp"

namespace vigil {
namespace {

using std::chrono::milliseconds;
using testing::HasSubstr;

TEST_F(PlayerBench, ASoundIsPlayedInItsOwnTimeAndTheCallReturnsAtOnce) {
    player(options());
    const auto sound = play(tone("a.wav", 1.5));
    EXPECT_EQ(m_player->active(), 1u) << "the call waited for the end";
    EXPECT_EQ(end(sound).outcome, PlayOutcome::Finished) << end(sound).detail;
    ASSERT_TRUE(heard(sound).began);
    EXPECT_GE(heard(sound).ended - *heard(sound).began, milliseconds(1400));
    EXPECT_EQ(heard(sound).ends.size(), 1u);
}

TEST_F(PlayerBench, SoundsOverlap) {
    player(options());
    const auto first = play(tone("a.wav", 1.0));
    const auto second = play(path("a.wav"));
    EXPECT_EQ(end(first).outcome, PlayOutcome::Finished);
    EXPECT_EQ(end(second).outcome, PlayOutcome::Finished);
    EXPECT_LT(*heard(second).began, heard(first).ended);
}

TEST_F(PlayerBench, SpeechesComeOneAfterAnotherAndSoundsGoOnBesideThem) {
    auto given = options();
    given.setup.program = toneProgram(0.4);
    player(given);
    const auto sound = play(tone("a.wav", 1.2));
    const auto first = speak("one");
    const auto second = speak("two");
    const auto third = speak("three");
    for (const auto one : {first, second, third, sound})
        EXPECT_EQ(end(one).outcome, PlayOutcome::Finished) << end(one).detail;
    EXPECT_LE(heard(first).ended, *heard(second).began);
    EXPECT_LE(heard(second).ended, *heard(third).began);
    EXPECT_LT(*heard(first).began, heard(sound).ended);
}

TEST_F(PlayerBench, AHeldSpeechKeepsItsPlaceUntilItIsReleased) {
    auto given = options();
    given.setup.program = toneProgram(0.1);
    player(given);
    const auto first = speak("one", /*held=*/true);
    const auto id = m_lastId;
    const auto second = speak("two");
    std::this_thread::sleep_for(milliseconds(300));
    EXPECT_EQ(m_player->active(), 2u);
    m_player->release(id);
    EXPECT_EQ(end(second).outcome, PlayOutcome::Finished);
    EXPECT_LE(heard(first).ended, *heard(second).began);
}

TEST_F(PlayerBench, OneThatIsNeverReleasedIsSpokenAllTheSame) {
    auto given = options();
    given.setup.program = toneProgram(0.1);
    given.timing.held = milliseconds(200);
    player(given);
    const auto asked = Steady::now();
    const auto speech = speak("one", /*held=*/true);
    EXPECT_EQ(end(speech).outcome, PlayOutcome::Finished);
    EXPECT_GE(*heard(speech).began - asked, milliseconds(200));
}

TEST_F(PlayerBench, TheTimeThatASpeechIsHeldCounts) {
    auto given = options();
    given.setup.program = program("sleep 60\n");
    given.setup.programTime = 60000;
    given.timing.held = milliseconds(4000);
    given.timing.slack = milliseconds(5000);
    player(given);
    const auto asked = Steady::now();
    EXPECT_EQ(end(speak("one", /*held=*/true)).outcome, PlayOutcome::TimedOut);
    EXPECT_LT(Steady::now() - asked, milliseconds(8500)) << "else it would be nine seconds";
}

TEST_F(PlayerBench, TheTextReachesTheProgramAsItIs) {
    auto given = options();
    given.setup.program = toneProgram(0.05);
    player(given);
    const std::string text = "<b>Böe</b> & $(reboot) \"' --help";
    EXPECT_EQ(end(speak(text)).outcome, PlayOutcome::Finished);
    EXPECT_EQ(fileText(path("said")), text);
}

TEST_F(PlayerBench, TheRealProgramSpeaks) {
    auto given = options();
    given.setup.rate = 300;
    player(given);
    const auto speech = speak("Gale");
    EXPECT_EQ(end(speech).outcome, PlayOutcome::Finished) << end(speech).detail;
    EXPECT_GT(heard(speech).ended - *heard(speech).began, milliseconds(150));
}

TEST_F(PlayerBench, WithoutAProgramASpeechEndsAtOnce) {
    auto given = options();
    given.setup.program = path("nobody");
    player(given);
    const PlayEnd ended = end(speak("Gale"));
    EXPECT_EQ(ended.outcome, PlayOutcome::NoProgram);
    EXPECT_THAT(ended.detail, HasSubstr("there is no program"));
}

TEST_F(PlayerBench, AProgramThatFailsIsQuoted) {
    auto given = options();
    given.setup.voice = "nobody";
    player(given);
    const PlayEnd ended = end(speak("Gale"));
    EXPECT_EQ(ended.outcome, PlayOutcome::NoProgram);
    EXPECT_THAT(ended.detail, HasSubstr("voice does not exist"));
}

TEST_F(PlayerBench, AProgramThatGivesNoSoundIsNoSpeech) {
    auto given = options();
    for (const char* text : {"exit 0\n", "echo RIFF\n", "head -c 100000 /dev/zero\n"}) {
        given.setup.program = program(text);
        player(given);
        EXPECT_EQ(end(speak("Gale")).outcome, PlayOutcome::NoProgram) << text;
    }
}

TEST_F(PlayerBench, AProgramThatHangsIsEndedWithWhatItStarted) {
    auto given = options();
    given.setup.programTime = 300;
    given.setup.program = program("sleep 60 & sleep 60\n");
    player(given);
    ::setenv("BENCH_MARK", m_folder.c_str(), 1);
    const auto asked = Steady::now();
    EXPECT_EQ(end(speak("Gale")).outcome, PlayOutcome::TimedOut);
    EXPECT_LT(Steady::now() - asked, milliseconds(20000));
    m_player->stop();
    EXPECT_TRUE(eventually([&] { return !somethingBears("BENCH_MARK=" + m_folder); }));
    ::unsetenv("BENCH_MARK");
}

TEST_F(PlayerBench, AProgramThatNeverEndsItsSpeechIsCut) {
    auto given = options();
    given.setup.program = program("cat " + tone("voice.wav", 0.1) + "; exec cat /dev/zero\n");
    player(given);
    const auto speech = speak("Gale");
    EXPECT_TRUE(begins(speech));
    m_player->stop(m_lastId);
    EXPECT_EQ(end(speech).outcome, PlayOutcome::Cut);
}

TEST_F(PlayerBench, WithoutADeviceEverythingEndsAtOnce) {
    ::setenv("SDL_AUDIODRIVER", "nobody", 1);
    auto given = options();
    given.setup.program = toneProgram(0.1);
    player(given);
    for (const auto one : {play(tone("a.wav", 5)), speak("Gale")}) {
        const PlayEnd ended = end(one);
        EXPECT_EQ(ended.outcome, PlayOutcome::NoDevice);
        EXPECT_THAT(ended.detail, HasSubstr("there is no sound device: "));
    }
    EXPECT_EQ(end(check(path("a.wav"))).outcome, PlayOutcome::Finished) << "it can be decoded all the same";
}

TEST_F(PlayerBench, AnUnknownDeviceIsNamedWithThoseThatThereAre) {
    auto given = options();
    given.setup.device = "Hall";
    player(given);
    const PlayEnd ended = end(play(tone("a.wav", 0.1)));
    EXPECT_EQ(ended.outcome, PlayOutcome::NoDevice);
    EXPECT_THAT(ended.detail, HasSubstr("; there are: \""));
}

TEST_F(PlayerBench, ThirtyTwoSoundsAreHeardAtOnceAndNoMore) {
    player(options());
    tone("a.wav", 1.5);
    std::vector<std::size_t> sounds;
    for (int i = 0; i <= kSoundsAtOnce; ++i)
        sounds.push_back(play(path("a.wav")));
    EXPECT_EQ(end(sounds.back()).outcome, PlayOutcome::Failed);
    sounds.pop_back();
    for (const auto sound : sounds)
        EXPECT_EQ(end(sound).outcome, PlayOutcome::Finished);
}

TEST_F(PlayerBench, MoreRequestsThanThereIsPlaceForAreRefused) {
    auto given = options();
    given.setup.program = toneProgram(0.1);
    player(given);
    for (std::size_t i = 0; i < kPlayRequests; ++i)
        speak("held", /*held=*/true);
    EXPECT_EQ(end(speak("one more")).outcome, PlayOutcome::Failed);
    EXPECT_EQ(m_player->active(), kPlayRequests);
}

TEST_F(PlayerBench, OneThatIsStoppedIsCutAndTheNextBegins) {
    auto given = options();
    given.setup.program = toneProgram(20);
    player(given);
    const auto first = speak("one");
    const auto id = m_lastId;
    const auto second = speak("two");
    ASSERT_TRUE(begins(first));
    m_player->stop(id);
    EXPECT_EQ(end(first).outcome, PlayOutcome::Cut);
    EXPECT_TRUE(begins(second));
    m_player->stop();
    EXPECT_EQ(end(second).outcome, PlayOutcome::Cut);
    EXPECT_EQ(end(play(path("voice.wav"))).outcome, PlayOutcome::Cut) << "it takes nothing any more";
}

TEST_F(PlayerBench, WithoutARequestThereIsNoProcess) {
    auto given = options();
    given.timing.idle = milliseconds(200);
    player(given);
    EXPECT_EQ(m_player->process(), 0);
    EXPECT_EQ(end(play(tone("a.wav", 0.1))).outcome, PlayOutcome::Finished);
    EXPECT_NE(m_player->process(), 0);
    EXPECT_TRUE(eventually([&] { return m_player->process() == 0; }));
    EXPECT_EQ(end(play(path("a.wav"))).outcome, PlayOutcome::Finished) << "it is started anew";
}

}  // namespace
}  // namespace vigil
