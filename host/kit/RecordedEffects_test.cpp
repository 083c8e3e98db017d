#include "host/kit/RecordedEffects.hpp"

#include <gtest/gtest.h>

#include "host/kit/ReplayWorld.hpp"
#include "platform/CallNote.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

using Kind = RecordedEffects::Kind;

class Listener : public SpeechSynthesizerDelegate {
  public:
    void speechSynthesizerDidFinishSpeaking(SpeechSynthesizer&, bool finished) override {
        reports.push_back(finished);
    }
    std::vector<bool> reports;
};

class RecordedEffectsTest : public testing::Test {
  protected:
    RecordingLog log;
    FakeInterfaceFiles interfaceFiles;
    ReplayWorld world{log, interfaceFiles, "/scripts"};
};

TEST_F(RecordedEffectsTest, AReplayNotesWhatItWouldHaveDoneWithTimeAndDoer) {
    const auto doer = std::make_shared<FakeObstacle>();
    const CallNote::Scope noted(doer);
    world.turnTo(Date(7));
    world.speech().makeSynthesizer()->startSpeakingString("Gale");
    EXPECT_TRUE(world.sound().play("/s/bell.wav"));
    EXPECT_TRUE(world.automationScripts().run("tell"));
    const auto noticed = world.effects().take();
    ASSERT_EQ(noticed.size(), 3u);
    const std::vector<std::pair<Kind, std::string>> expected = {
        {Kind::Speech, "Gale"}, {Kind::Sound, "/s/bell.wav"}, {Kind::AutomationScript, "tell"}};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(noticed[i].kind, expected[i].first);
        EXPECT_EQ(noticed[i].text, expected[i].second);
        EXPECT_EQ(noticed[i].time, Date(7));
        EXPECT_EQ(noticed[i].plugIn, doer);
    }
    EXPECT_TRUE(world.effects().entries().empty()) << "what was taken is forgotten";
}

TEST_F(RecordedEffectsTest, SpeechEndsAtOnceAndAnEmptyOrAbsentTextIsNoSpeech) {
    Listener listener;
    const auto synthesizer = world.speech().makeSynthesizer();
    synthesizer->setDelegate(&listener);
    EXPECT_TRUE(synthesizer->startSpeakingString("Gale"));
    EXPECT_FALSE(synthesizer->startSpeakingString(""));
    EXPECT_FALSE(synthesizer->startSpeakingString(std::nullopt));
    EXPECT_EQ(listener.reports, (std::vector<bool>{true, false, false}));
    EXPECT_EQ(world.effects().entries().size(), 1u);
}

TEST_F(RecordedEffectsTest, APlayerIsGivenForEveryFileAndIsNoEffect) {
    const auto player = world.sound().makePlayer("/s/bell.wav");
    ASSERT_TRUE(player);
    player->stop();
    EXPECT_EQ(player->path(), "/s/bell.wav");
    EXPECT_TRUE(world.effects().entries().empty());
}

}  // namespace
}  // namespace vigil
