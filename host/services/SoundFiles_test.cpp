#include "host/services/SoundFiles.hpp"

#include <filesystem>

#include <gmock/gmock.h>
#include <signal.h>

#include "host/services/LinuxSound.hpp"
#include "host/services/testing/PlayerBench.hpp"

namespace vigil {
namespace {

using std::chrono::milliseconds;
using testing::HasSubstr;

class Sink : public SoundSink {
  public:
    bool play(const std::string& path, const std::optional<std::string>& refusal) override {
        m_asked.push_back(path + (refusal ? ": " + *refusal : ""));
        return !refusal;
    }
    std::vector<std::string> m_asked;
};

class SoundFile : public PlayerBench {
  protected:
    /// A player that does not answer.
    Player& hungPlayer() {
        player({.helper = program("exec sleep 60\n")});
        return *m_player;
    }
};

TEST_F(SoundFile, AVerdictIsKeptUntilTheFileChanges) {
    SoundFiles files(player(options()), milliseconds(4000));
    const std::string file = tone("a.wav", 0.2);
    EXPECT_EQ(files.refusal(file), std::nullopt);
    m_player->stop();
    EXPECT_EQ(files.refusal(file), std::nullopt) << "nobody has to look again";
    write("a.wav", "something else");
    EXPECT_NE(files.refusal(file), std::nullopt) << "this one nobody has looked at";
}

TEST_F(SoundFile, OneThatIsChangedIsLookedAtAnew) {
    SoundFiles files(player(options()), kPatience);
    const std::string file = write("a.wav", "no sound");
    EXPECT_THAT(files.refusal(file).value_or(""), HasSubstr("no wav, mp3, ogg or flac"));
    tone("a.wav", 0.2);
    EXPECT_EQ(files.refusal(file), std::nullopt);
}

TEST_F(SoundFile, AFailureThatPassesIsNoVerdictAboutTheFile) {
    const std::string file = tone("a.wav", 0.2);
    const std::string helper =
        program("[ -e " + path("well") + " ] && exec " + builtHelper() + " \"$@\"\nkill -9 $$\n");
    SoundFiles files(player({.helper = helper}), kPatience);
    EXPECT_THAT(files.refusal(file).value_or(""), HasSubstr("the player was ended by signal 9"));
    write("well", "");
    EXPECT_EQ(files.refusal(file), std::nullopt);
}

TEST_F(SoundFile, AFileAtWhichThePlayerCrashesIsRefusedForGood) {
    const std::string file = tone("a.wav", 0.2);
    const std::string helper =
        program("[ -e " + path("well") + " ] && exec " + builtHelper() + " \"$@\"\nkill -SEGV $$\n");
    SoundFiles files(player({.helper = helper}), kPatience);
    EXPECT_THAT(files.refusal(file).value_or(""), HasSubstr("when it tried to decode it"));
    write("well", "");
    EXPECT_NE(files.refusal(file), std::nullopt);
}

TEST_F(SoundFile, OneThatIsChangedWithinItsTimeAndSizeIsLookedAtAnew) {
    SoundFiles files(player(options()), kPatience);
    const std::string sound = toneWav(0.2);
    const std::string file = write("a.wav", std::string(sound.size(), 'x'));
    const auto time = std::filesystem::last_write_time(file);
    EXPECT_NE(files.refusal(file), std::nullopt);
    write("a.wav", sound);
    std::filesystem::last_write_time(file, time);
    EXPECT_EQ(files.refusal(file), std::nullopt);
}

TEST_F(SoundFile, TheSoundsOfAFolderAreKnownWithoutWaiting) {
    tone("a.wav", 0.2);
    write("b.mp3", "no sound");
    SoundFiles files(player(options()), milliseconds(0));
    files.lookAt(m_folder);
    EXPECT_TRUE(eventually([&] { return m_player->active() == 0; }));
    EXPECT_EQ(files.refusal(path("a.wav")), std::nullopt);
    EXPECT_THAT(files.refusal(path("b.mp3")).value_or(""), HasSubstr("no wav, mp3, ogg or flac"));
}

TEST_F(SoundFile, WhatIsNoFileOrTooLargeIsRefusedWithoutThePlayer) {
    SoundFiles files(player({.helper = path("nobody")}));
    EXPECT_THAT(files.refusal(path("nobody.wav")).value_or(""), HasSubstr("No such file"));
    EXPECT_EQ(files.refusal(m_folder), "it is no file");
    write("large.wav", std::string(kSoundFileSize + 1, 'x'));
    EXPECT_EQ(files.refusal(path("large.wav")), "it is larger than 8 MiB");
    EXPECT_EQ(m_player->process(), 0);
}

TEST_F(SoundFile, AnUnknownFileIsWaitedForOnceAndNotForLong) {
    SoundFiles files(hungPlayer(), milliseconds(2000));
    const std::string file = tone("a.wav", 0.2);
    const auto before = Steady::now();
    EXPECT_EQ(files.refusal(file), "the player has not looked at it in time");
    EXPECT_GE(Steady::now() - before, milliseconds(2000));
    const auto again = Steady::now();
    EXPECT_EQ(files.refusal(file), "the player has not looked at it in time");
    EXPECT_LT(Steady::now() - again, milliseconds(1900));
}

TEST_F(SoundFile, WhoWaitsIsLetGoWhenTheHostStops) {
    SoundFiles files(hungPlayer(), kPatience);
    const std::string file = tone("a.wav", 0.2);
    std::thread stopper([&] {
        std::this_thread::sleep_for(milliseconds(100));
        files.stopWaiting();
    });
    const auto before = Steady::now();
    EXPECT_EQ(files.refusal(file), "the host stops");
    EXPECT_LT(Steady::now() - before, kPatience / 2);
    stopper.join();
}

TEST_F(SoundFile, APlayerIsAnInertHandleAndAbsentWhereTheFileCannotBePlayed) {
    SoundFiles files(player(options()), kPatience);
    Sink sink;
    LinuxSound sound(files, sink);
    const std::string file = tone("a.wav", 0.2);
    const auto handle = sound.makePlayer(file);
    ASSERT_TRUE(handle);
    EXPECT_EQ(handle->path(), file);
    handle->stop();
    EXPECT_FALSE(sound.makePlayer(path("nobody.wav")));
    EXPECT_TRUE(sink.m_asked.empty()) << "a handle plays nothing and tells nothing";
    EXPECT_TRUE(sound.play(file));
    EXPECT_FALSE(sound.play(path("nobody.wav")));
    EXPECT_THAT(sink.m_asked, testing::ElementsAre(file, HasSubstr("No such file")));
}

}  // namespace
}  // namespace vigil
