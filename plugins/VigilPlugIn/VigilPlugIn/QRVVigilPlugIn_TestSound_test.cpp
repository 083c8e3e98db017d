#include <gmock/gmock.h>

#include "platform/ClassRegistry.hpp"
#include "platform/RuleEditor.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Actions.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/ModuleClasses.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TestSound : public testing::Test {
  protected:
    TestSound() {
        auto bundle = std::make_shared<Bundle>();
        bundle->resourcePath = "/resources";
        for (const ModuleClass& entry : moduleClasses())
            ClassRegistry::shared().add(entry.name, entry.make, bundle);
        m_editor->setNestingMode(RuleEditorNestingMode::List);
        m_editor->setDelegate(m_monitor);
        m_monitor->setRuleEditor(m_editor);
        m_world.files().setFile("/scripts/s", "echo");
    }

    void addRow(const std::shared_ptr<Criterion>& root, DisplayValue value) {
        addRow(root, {root->name().value_or(""), std::move(value)});
    }
    void addRow(const std::shared_ptr<Criterion>& root, DisplayValueList shown) {
        ASSERT_TRUE(m_editor->addRow(nullptr));
        m_editor->setCriteria({root, Criterion::criterionWithAgent(m_agent, "leaf")}, std::move(shown),
                              m_editor->numberOfRows() - 1);
    }
    void addSound(const std::string& title) {
        const auto popUp = std::make_shared<PopUpButton>();
        popUp->addItemWithTitle(title);
        addRow(PlaySoundCriterion::criterionWithAgent(m_agent), popUp);
    }
    void addSpeech(const std::string& text) {
        addRow(SpeakTextCriterion::criterionWithAgent(m_agent), std::make_shared<TextField>(text));
    }

    FakeWorld m_world;
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
    std::shared_ptr<QRVVigilPlugIn> m_monitor = makePlugIn<QRVVigilPlugIn>(m_agent, nullptr);
    std::shared_ptr<RuleEditor> m_editor = std::make_shared<RuleEditor>();
};

TEST_F(TestSound, TwoSoundsArePlayedWithoutAWaitAndThenTheTextIsSpokenInTheOrderOfTheRows) {
    addSound("a.wav");
    addSound("b.mp3");
    addSpeech("Gale");
    m_world.speech().report = FakeSpeech::Report::Loop;
    m_monitor->testSound(nullptr);
    EXPECT_THAT(m_world.effects(),
                ElementsAre("player /resources/a.wav", "play /resources/a.wav", "player /resources/b.mp3",
                            "play /resources/b.mp3", "speak Gale", "spoken"));
    EXPECT_EQ(m_world.currentRunLoop().runs.size(), 4u) << "only speech is waited for";
}

TEST_F(TestSound, RowsOfAllOtherActionsAreLeftAlone) {
    addRow(RunScriptCriterion::criterionWithAgent(m_agent), std::make_shared<TextField>("s"));
    addRow(SendEmailCriterion::criterionWithAgent(m_agent), std::make_shared<TextField>("a@b.c"));
    addRow(SendSMSCriterion::criterionWithAgent(m_agent), std::make_shared<TextField>("45"));
    addRow(SayCurrentConditionsCriterion::criterionWithAgent(m_agent), "Yes");
    m_monitor->testSound(nullptr);
    EXPECT_THAT(m_agent->scripts, IsEmpty());
    EXPECT_THAT(m_world.automationScripts().sources, IsEmpty());
    EXPECT_THAT(m_world.effects(), ElementsAre(testing::StartsWith("speak There is a Vigil for "), "spoken"));
}

TEST_F(TestSound, ARowIsKnownByWhatItShowsFirstLetterForLetter) {
    const auto field = std::make_shared<TextField>("Speak Text");
    for (const DisplayValue& first : {DisplayValue{"speak text"}, DisplayValue{"Speak Text "}, DisplayValue{},
                                      DisplayValue{field}, DisplayValue{"Run script"}})
        addRow(SpeakTextCriterion::criterionWithAgent(m_agent), {first, field});
    m_monitor->testSound(nullptr);
    EXPECT_THAT(m_world.effects(), IsEmpty());
}

TEST_F(TestSound, TheRootThatIsAskedIsTheRowsOwnWhateverItsClass) {
    addRow(RunScriptCriterion::criterionWithAgent(m_agent), {"Play Sound", std::make_shared<TextField>("s")});
    m_monitor->testSound(nullptr);
    EXPECT_EQ(m_agent->scripts.size(), 1u) << "what a row shows decides, not its class";
}

TEST_F(TestSound, AnEditorWithoutRowsAndAMonitorWithoutAnEditorTestNothing) {
    EXPECT_EQ(m_editor->numberOfRows(), 0);
    m_monitor->testSound(nullptr);
    m_monitor->setRuleEditor(nullptr);
    m_monitor->testSound(nullptr);
    EXPECT_THAT(m_world.effects(), IsEmpty());
}

TEST_F(TestSound, ARowAddedWhileOneSpeaksIsTestedTooAndOneRemovedIsNot) {
    addSpeech("one");
    addSpeech("two");
    m_world.speech().report = FakeSpeech::Report::Loop;
    bool changed = false;
    m_world.currentRunLoop().onRun = [&](Date) {
        if (changed) return;
        changed = true;
        m_editor->removeRowAtIndex(1);
        addSpeech("three");
        addSpeech("four");
    };
    m_monitor->testSound(nullptr);
    EXPECT_THAT(m_world.effects(),
                ElementsAre("speak one", "spoken", "speak three", "spoken", "speak four", "spoken"));
}

TEST_F(TestSound, ARowRemovedWhileItSpeaksIsHeardToItsEnd) {
    addSpeech("one");
    m_world.speech().report = FakeSpeech::Report::Loop;
    m_world.currentRunLoop().onRun = [&](Date) {
        if (m_editor->numberOfRows() > 0) m_editor->removeRowAtIndex(0);
    };
    m_monitor->testSound(nullptr);
    EXPECT_THAT(m_world.effects(), ElementsAre("speak one", "spoken"));
}

TEST_F(TestSound, ATestNeitherJudgesNorWaitsForTheNextTrigger) {
    addSound("a.wav");
    const auto before = m_monitor->retriggerDate();
    const auto status = m_monitor->actionStatus();
    m_monitor->testSound(nullptr);
    EXPECT_EQ(m_monitor->retriggerDate(), before);
    EXPECT_EQ(m_monitor->actionStatus(), status);
}

TEST_F(TestSound, AnInterfaceFileReachesItByName) {
    addSound("a.wav");
    const auto* action = m_monitor->actionNamed("testSound:");
    ASSERT_TRUE(action);
    action->perform(*m_monitor, m_editor.get());
    EXPECT_THAT(m_world.effects(), ElementsAre("player /resources/a.wav", "play /resources/a.wav"));
}

}  // namespace
}  // namespace vigil
