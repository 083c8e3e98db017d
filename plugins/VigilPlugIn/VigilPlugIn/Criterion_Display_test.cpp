#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Display.hpp"

#include <gmock/gmock.h>

#include "platform/ClassRegistry.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Actions.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

// Where the controls of a row come from, and what is done with them.

namespace vigil {
namespace {

using testing::ElementsAre;

/// Classes of a bundle of their own.
class OtherField : public TextFieldCriterion {
  public:
    std::string className() const override { return "OtherField"; }
};
class OtherPopUp : public PopUpCriterion {
  public:
    std::string className() const override { return "OtherPopUp"; }
};

class BundleNotingFiles : public FakeInterfaceFiles {
  public:
    std::optional<std::vector<std::shared_ptr<Object>>> instantiate(const Bundle& bundle,
                                                                    const std::string& name,
                                                                    InterfaceOwner* owner) override {
        loads.push_back(bundle.resourcePath + " " + name);
        owners.push_back(owner);
        return FakeInterfaceFiles::instantiate(bundle, name, owner);
    }
    std::vector<std::string> loads;
    std::vector<InterfaceOwner*> owners;
};

class NotingWorld : public FakeWorld {
  public:
    FakeInterfaceFiles& interfaceFiles() override { return noting; }
    BundleNotingFiles noting;
};

class CriterionControls : public testing::Test {
  protected:
    CriterionControls() {
        auto bundle = std::make_shared<Bundle>();
        bundle->resourcePath = "/elsewhere";
        ClassRegistry::shared().add("OtherField", &makeObject<OtherField>, bundle);
        ClassRegistry::shared().add("OtherPopUp", &makeObject<OtherPopUp>, bundle);
    }

    NotingWorld m_world;
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
};

TEST_F(CriterionControls, EachCallLoadsTheFileOfTheBundleThatHoldsTheNodesClass) {
    const auto field = TextFieldCriterion::criterionWithAgent<OtherField>(m_agent);
    const auto popUp = PopUpCriterion::criterionWithAgent<OtherPopUp>(m_agent);
    field->displayValue();
    popUp->displayValue();
    popUp->displayValue();
    EXPECT_THAT(m_world.noting.loads,
                ElementsAre("/elsewhere TextField", "/elsewhere PopUpButton", "/elsewhere PopUpButton"));
    InterfaceOwner* const itself = popUp.get();
    EXPECT_THAT(m_world.noting.owners, ElementsAre(nullptr, itself, itself));
    EXPECT_TRUE(popUp->interfaceTable().outlets.empty()) << "it offers its file nothing to bind";
    EXPECT_TRUE(popUp->interfaceTable().properties.empty());
    EXPECT_TRUE(popUp->interfaceTable().actions.empty());
}

TEST_F(CriterionControls, TheFolderIsListedAnewForEveryPopUpInItsOwnOrderFoldersIncluded) {
    const auto node = PopUpCriterion::criterionWithAgent<OtherPopUp>(m_agent);
    const auto titles = [&] {
        return std::get<std::shared_ptr<PopUpButton>>(node->displayValue())->itemTitles();
    };
    m_world.files().setFolder("/elsewhere", {"z.wav", "a.mp3", "more.wav.d"});
    EXPECT_THAT(titles(), ElementsAre("z.wav", "a.mp3", "more.wav.d"));
    m_world.files().setFolder("/elsewhere", {"new.wav", "images", "z.wav"});
    EXPECT_THAT(titles(), ElementsAre("new.wav", "z.wav"));
    EXPECT_THAT(*node->getArrayOfSounds(), ElementsAre("new.wav", "images", "z.wav"));
}

TEST_F(CriterionControls, ATextFieldIsShownAsItsFileHasIt) {
    const auto preset = std::make_shared<TextField>("type here");
    m_world.noting.set("TextField",
                       [&](InterfaceOwner*) { return std::vector<std::shared_ptr<Object>>{preset}; });
    const auto node = TextFieldCriterion::criterionWithAgent<OtherField>(m_agent);
    EXPECT_EQ(node->displayValue(), DisplayValue{preset});
    EXPECT_EQ(preset->stringValue(), "type here");
    EXPECT_EQ(node->description(), defaultDescription(*node) + " " + description(DisplayValue{preset}))
        << "the control's own description follows";
}

TEST_F(CriterionControls, ANodeIsNeitherEqualToWhatIsNoNodeNorDoesAnythingRunItsBlock) {
    const auto node = Criterion::criterionWithAgent(m_agent, "FakeAgent");
    EXPECT_FALSE(node->isEqual(m_agent.get()));
    bool ran = false;
    node->setActionBlock([&ran] { ran = true; });
    node->performActionWithDisplayValues({"FakeAgent"});
    node->displayValue();
    EXPECT_FALSE(ran);
    node->actionBlock()();
    EXPECT_TRUE(ran) << "it is kept for whoever asks";
}

template <class Action>
class Own : public Action {
  public:
    std::string className() const override { return "Own"; }
};

template <class Action>
void expectOwnRoot(const std::shared_ptr<FakeAgent>& agent) {
    const auto plain = Action::criterionWithAgent(agent);
    const std::shared_ptr<Own<Action>> own = Action::template criterionWithAgent<Own<Action>>(agent);
    EXPECT_EQ(own->className(), "Own");
    EXPECT_EQ(own->name(), plain->name());
    ASSERT_EQ(own->numberOfChildren(), plain->numberOfChildren());
    for (std::int64_t i = 0; i < own->numberOfChildren(); ++i) {
        EXPECT_EQ(own->childAtIndex(i)->className(), plain->childAtIndex(i)->className());
        EXPECT_EQ(own->childAtIndex(i)->agent(), agent);
    }
}

TEST_F(CriterionControls, AFactoryThatASubclassInheritsBuildsTheSubclass) {
    expectOwnRoot<SendEmailCriterion>(m_agent);
    expectOwnRoot<SendSMSCriterion>(m_agent);
    expectOwnRoot<RunScriptCriterion>(m_agent);
    expectOwnRoot<PlaySoundCriterion>(m_agent);
    expectOwnRoot<SpeakTextCriterion>(m_agent);
    expectOwnRoot<SayCurrentConditionsCriterion>(m_agent);
}

}  // namespace
}  // namespace vigil
