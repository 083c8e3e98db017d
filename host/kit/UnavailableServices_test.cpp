#include "host/kit/UnavailableServices.hpp"

#include <gtest/gtest.h>

#include "host/kit/LiveWorld.hpp"
#include "host/kit/StandardLog.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

class Listener : public SpeechSynthesizerDelegate {
  public:
    void speechSynthesizerDidFinishSpeaking(SpeechSynthesizer&, bool finished) override {
        reports.push_back(finished);
    }
    std::vector<bool> reports;
};

class UnavailableServices : public testing::Test {
  protected:
    std::vector<RecordingLog::Line> problems(const std::string& message) const {
        return {{kLogProblem, message}};
    }

    RecordingLog log;
    FakeInterfaceFiles interfaceFiles;
    LiveWorld world{log, interfaceFiles, "/scripts"};
};

TEST_F(UnavailableServices, SpeechIsALineInTheLogAndReportsAtOnceThatItDidNotFinish) {
    Listener listener;
    const auto synthesizer = world.speech().makeSynthesizer();
    synthesizer->setDelegate(&listener);
    EXPECT_FALSE(synthesizer->startSpeakingString("Gale warning"));
    EXPECT_EQ(listener.reports, std::vector<bool>{false});
    EXPECT_EQ(log.lines(), problems("speech is not available: not spoken: Gale warning"));
}

TEST_F(UnavailableServices, AnAbsentTextAndAnAbsentListenerAreTakenToo) {
    EXPECT_FALSE(world.speech().makeSynthesizer()->startSpeakingString(std::nullopt));
    EXPECT_EQ(log.lines(), problems("speech is not available: not spoken: (null)"));
}

TEST_F(UnavailableServices, ASoundIsOneLineInTheLogAndNoPlayerComesOfIt) {
    EXPECT_EQ(world.sound().makePlayer("/sounds/bell.wav"), nullptr);
    EXPECT_FALSE(world.sound().play("/sounds/bell.wav"));
    EXPECT_EQ(log.lines(), problems("sound is not available: not played: /sounds/bell.wav"));
}

TEST_F(UnavailableServices, AnAutomationScriptIsAnErrorWithItsText) {
    const auto result = world.automationScripts().run("tell application");
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().message, "automation scripts are not available: not run: tell application");
    EXPECT_EQ(log.lines(), problems(result.error().message));
}

}  // namespace
}  // namespace vigil
