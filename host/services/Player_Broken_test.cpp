#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>

#include "host/services/Player.hpp"
#include "host/services/UniqueFd.hpp"
#include "host/services/testing/PlayerBench.hpp"

// A player that dies or hangs, and files that are not what they say.

namespace vigil {
namespace {

using std::chrono::milliseconds;
using testing::HasSubstr;

class BrokenPlayer : public PlayerBench {
  protected:
    std::string checked(const std::string& file) {
        const PlayEnd ended = end(check(file));
        return ended.outcome == PlayOutcome::Finished ? "yes" : ended.detail;
    }
};

TEST_F(BrokenPlayer, OneThatIsKilledEndsWhatItPlayedAndTheNextOneTakesOver) {
    auto given = options();
    given.setup.program = toneProgram(20);
    player(given);
    const auto sound = play(tone("a.wav", 20));
    const auto speech = speak("one");
    const auto waiting = speak("two");
    ASSERT_TRUE(begins(sound));
    ASSERT_TRUE(begins(speech));
    const int before = m_player->process();
    ::kill(before, SIGKILL);
    EXPECT_EQ(end(sound).outcome, PlayOutcome::Failed);
    EXPECT_THAT(end(speech).detail, HasSubstr("signal 9"));
    EXPECT_TRUE(begins(waiting)) << "the speech whose turn had not come is spoken by the next player";
    EXPECT_NE(m_player->process(), before);
    EXPECT_EQ(heard(sound).ends.size(), 1u);
}

TEST_F(BrokenPlayer, OneThatHangsIsEndedAndTheNextOneTakesOver) {
    auto given = options();
    // Shorter, and a busy machine's player has not even begun.
    given.timing.answer = milliseconds(2000);
    player(given);
    const auto sound = play(tone("a.wav", 60));
    ASSERT_TRUE(begins(sound));
    const int before = m_player->process();
    ::kill(before, SIGSTOP);
    const auto hung = Steady::now();
    EXPECT_EQ(end(sound).outcome, PlayOutcome::TimedOut);
    EXPECT_LT(Steady::now() - hung, milliseconds(20000));
    EXPECT_EQ(end(play(tone("b.wav", 0.1))).outcome, PlayOutcome::Finished);
    EXPECT_NE(m_player->process(), before);
}

TEST_F(BrokenPlayer, ADeviceThatHangsWhileItPlaysIsGivenUpWhenTheSoundsTimeIsOver) {
    // A pipe that somebody holds and nobody reads takes a third of a second of sound.
    ASSERT_EQ(::mkfifo(path("card").c_str(), 0600), 0);
    const UniqueFd holder(::open(path("card").c_str(), O_RDWR | O_CLOEXEC));
    ::setenv("SDL_AUDIODRIVER", "disk", 1);
    ::setenv("SDL_DISKAUDIOFILE", path("card").c_str(), 1);
    auto given = options();
    given.timing.slack = milliseconds(3000);
    player(given);
    const auto sound = play(tone("a.wav", 2));
    const auto other = play(tone("b.wav", 60));
    EXPECT_EQ(end(sound).outcome, PlayOutcome::TimedOut);
    EXPECT_THAT(end(sound).detail, HasSubstr("did not play it to its end in time"));
    EXPECT_THAT(end(other).detail, HasSubstr("another sound hung"));
    ASSERT_TRUE(heard(sound).began);
    const auto took = heard(sound).ended - *heard(sound).began;
    EXPECT_GT(took, milliseconds(2000)) << "the sound's own length";
    EXPECT_LT(took, milliseconds(20000));
    EXPECT_EQ(m_player->process(), 0);
}

TEST_F(BrokenPlayer, ADeviceThatHangsWhenItIsOpenedIsGivenUp) {
    ASSERT_EQ(::mkfifo(path("card").c_str(), 0600), 0);  // that nobody reads cannot be opened
    ::setenv("SDL_AUDIODRIVER", "disk", 1);
    ::setenv("SDL_DISKAUDIOFILE", path("card").c_str(), 1);
    auto given = options();
    given.setup.program = toneProgram(0.1);
    given.timing.answer = milliseconds(400);
    player(given);
    const auto asked = Steady::now();
    EXPECT_EQ(end(speak("Gale")).outcome, PlayOutcome::TimedOut);
    EXPECT_LT(Steady::now() - asked, milliseconds(20000));
}

TEST_F(BrokenPlayer, WithoutAHelperEverythingFailsWithWords) {
    player({.helper = path("nobody")});
    const PlayEnd ended = end(play(tone("a.wav", 0.1)));
    EXPECT_EQ(ended.outcome, PlayOutcome::Failed);
    EXPECT_THAT(ended.detail, HasSubstr("cannot be started"));
}

TEST_F(BrokenPlayer, AHelperThatTalksNonsenseIsEnded) {
    const std::string helper = program("head -c 100 /dev/zero >&0\nsleep 60\n");
    player({.helper = helper});
    EXPECT_EQ(end(play(tone("a.wav", 0.1))).outcome, PlayOutcome::Failed);
}

TEST_F(BrokenPlayer, TheFourFormsCanBeDecodedAndNothingElse) {
    player(options());
    EXPECT_EQ(checked(tone("a.wav", 0.5)), "yes");
    const std::string sounds = VIGIL_SOURCE_DIR "/resources/sounds/";
    EXPECT_EQ(checked(sounds + "dawn.mp3"), "yes");
    for (const char* ending : {"ogg", "flac"}) {
        const std::string made = path(std::string("b.") + ending);
        ASSERT_EQ(std::system(("sox " + path("a.wav") + " " + made).c_str()), 0) << "sox is missing";
        EXPECT_EQ(checked(made), "yes") << ending;
        EXPECT_EQ(end(play(made)).outcome, PlayOutcome::Finished);
    }
    EXPECT_THAT(checked(path("nobody.wav")), HasSubstr("No such file"));
    EXPECT_EQ(checked(m_folder), "it is no file");
    EXPECT_THAT(checked(write("text.wav", "no sound at all")), HasSubstr("no wav, mp3, ogg or flac"));
    EXPECT_NE(checked(write("junk.mp3", "ID3" + std::string(5000, 'x'))), "yes");
    EXPECT_NE(checked(write("head.wav", toneWav(1).substr(0, 20))), "yes");
    EXPECT_NE(checked(write("empty.wav", "")), "yes");
    EXPECT_EQ(checked(write("cut.wav", toneWav(1).substr(0, 20000))), "yes") << "what is there is played";
}

TEST_F(BrokenPlayer, APipeIsNotWaitedFor) {
    player(options());
    ASSERT_EQ(::mkfifo(path("pipe.wav").c_str(), 0600), 0);
    EXPECT_EQ(checked(path("pipe.wav")), "it is no file");
}

TEST_F(BrokenPlayer, FilesAndSoundsHaveTheirBounds) {
    player(options());
    write("large.wav", toneWav(1) + std::string(kSoundFileSize, '\0'));
    EXPECT_EQ(checked(path("large.wav")), "it is larger than 8 MiB");
    EXPECT_EQ(checked(write("long.wav", toneWav(kSoundSeconds + 1, 8000))), "it is longer than 120 seconds");
    EXPECT_EQ(checked(write("whole.wav", toneWav(kSoundSeconds - 1, 8000))), "yes");
    // an hour of silence is small as a file and more than half a gigabyte as a sound
    ASSERT_EQ(std::system(("sox -n -r 8000 -c 1 -b 16 " + path("hour.flac") + " trim 0 3600").c_str()), 0);
    EXPECT_EQ(checked(path("hour.flac")), "it is longer than 120 seconds");
    const auto refused = play(path("long.wav"));
    EXPECT_EQ(end(refused).outcome, PlayOutcome::NotPlayable);
}

}  // namespace
}  // namespace vigil
