#include <stdexcept>

#include <gmock/gmock.h>

#include "platform/ClassRegistry.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Actions.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/ModuleClasses.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;

class PlaySound : public testing::Test {
  protected:
    PlaySound() {
        auto bundle = std::make_shared<Bundle>();
        bundle->resourcePath = "/resources";
        for (const ModuleClass& entry : moduleClasses())
            ClassRegistry::shared().add(entry.name, entry.make, bundle);
    }

    static DisplayValueList row(const std::string& title) {
        const auto popUp = std::make_shared<PopUpButton>();
        popUp->addItemWithTitle(title);
        return {"Play Sound", popUp};
    }

    FakeWorld m_world;
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
    std::shared_ptr<PlaySoundCriterion> m_action = PlaySoundCriterion::criterionWithAgent(m_agent);
};

TEST_F(PlaySound, BeforeTheFirstPerformanceThereIsNeitherPathNorPlayer) {
    EXPECT_FALSE(m_action->alertWavFileName());
    EXPECT_EQ(m_action->audioPlayer(), nullptr);
}

TEST_F(PlaySound, AfterwardsItHoldsThePathAndAPlayerForTheFileThatNobodyStarted) {
    m_action->performActionWithDisplayValues(row("bell.wav"));
    EXPECT_EQ(m_action->alertWavFileName(), "/resources/bell.wav");
    ASSERT_TRUE(m_action->audioPlayer());
    EXPECT_EQ(m_action->audioPlayer()->path(), "/resources/bell.wav");
    EXPECT_THAT(m_world.effects(), ElementsAre("player /resources/bell.wav", "play /resources/bell.wav"))
        << "the one thing played is the sound beside the player";
}

TEST_F(PlaySound, ASecondPerformanceStopsThePlayerOfTheFirstAndLetsItsSoundGoOn) {
    m_action->performActionWithDisplayValues(row("a.wav"));
    m_action->performActionWithDisplayValues(row("b.mp3"));
    EXPECT_THAT(m_world.effects(),
                ElementsAre("player /resources/a.wav", "play /resources/a.wav", "stop /resources/a.wav",
                            "player /resources/b.mp3", "play /resources/b.mp3"));
    EXPECT_EQ(m_action->audioPlayer()->path(), "/resources/b.mp3");
}

TEST_F(PlaySound, ItReturnsWithoutTurningTheRunLoop) {
    m_action->performActionWithDisplayValues(row("a.wav"));
    EXPECT_TRUE(m_world.currentRunLoop().runs.empty());
}

TEST_F(PlaySound, AFileThatCannotBeReadLeavesNoPlayerAndNobodyHearsOfIt) {
    m_action->performActionWithDisplayValues(row("good.wav"));
    m_world.sound().unplayable = {"/resources/bad.wav"};
    EXPECT_NO_THROW(m_action->performActionWithDisplayValues(row("bad.wav")));
    EXPECT_EQ(m_action->audioPlayer(), nullptr) << "the old player is replaced by none";
    EXPECT_EQ(m_action->alertWavFileName(), "/resources/bad.wav");
    EXPECT_THAT(m_world.effects(), testing::Contains("play /resources/bad.wav"))
        << "what is heard is asked for all the same";
    EXPECT_TRUE(m_world.log().lines().empty());
    m_action->performActionWithDisplayValues(row("good.wav"));
    EXPECT_TRUE(m_action->audioPlayer());
}

TEST_F(PlaySound, NoChosenSoundGivesAPathThatEndsInAnAbsentTitle) {
    m_action->performActionWithDisplayValues({"Play Sound", std::make_shared<PopUpButton>()});
    EXPECT_EQ(m_action->alertWavFileName(), "/resources/(null)");
    m_action->performActionWithDisplayValues({"Play Sound", "a text is no pop-up"});
    EXPECT_EQ(m_action->alertWavFileName(), "/resources/(null)");
}

TEST_F(PlaySound, TheChosenTitleIsReadWhenTheActionRuns) {
    const auto popUp = std::make_shared<PopUpButton>();
    popUp->addItemWithTitle("a.wav");
    popUp->addItemWithTitle("b.wav");
    const DisplayValueList shown = {"Play Sound", popUp};
    popUp->selectItemWithTitle("b.wav");
    m_action->performActionWithDisplayValues(shown);
    EXPECT_EQ(m_action->alertWavFileName(), "/resources/b.wav");
}

TEST_F(PlaySound, RowsThatShareTheActionShareItsPlayer) {
    const auto other = PlaySoundCriterion::criterionWithAgent(m_agent);
    m_action->performActionWithDisplayValues(row("a.wav"));
    EXPECT_EQ(other->audioPlayer(), nullptr) << "another action has one of its own";
}

TEST_F(PlaySound, AListWithoutASecondDisplayValueThrowsWhenTheFolderIsSet) {
    EXPECT_THROW(m_action->performActionWithDisplayValues({"Play Sound"}), std::out_of_range);
    EXPECT_EQ(m_action->alertWavFileName(), "/resources");
    EXPECT_TRUE(m_world.effects().empty());
}

}  // namespace
}  // namespace vigil
