#include "plugins/VigilPlugIn/VigilPlugIn/Criterion.hpp"

#include <stdexcept>

#include <gmock/gmock.h>

#include "platform/ClassRegistry.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Actions.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Display.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/ModuleClasses.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;

class CriterionTree : public testing::Test {
  protected:
    CriterionTree() {
        auto bundle = std::make_shared<Bundle>();
        bundle->resourcePath = "/resources";
        for (const ModuleClass& entry : moduleClasses())
            ClassRegistry::shared().add(entry.name, entry.make, bundle);
    }

    FakeWorld m_world;
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
};

TEST_F(CriterionTree, ANodeMadeForAnAgentAloneHasNoNameNoChildrenAndShowsNothing) {
    const auto node = Criterion::criterionWithAgent(m_agent);
    EXPECT_FALSE(node->name());
    EXPECT_EQ(node->children(), nullptr);
    EXPECT_EQ(node->numberOfChildren(), 0);
    EXPECT_TRUE(std::holds_alternative<std::monostate>(node->displayValue()));
    EXPECT_EQ(node->agent(), m_agent);
}

TEST_F(CriterionTree, ChildrenAreListedInOrderInAListOfTheNodesOwn) {
    CriterionList given = {Criterion::criterionWithAgent(m_agent, "a"),
                           Criterion::criterionWithAgent(m_agent, "b"),
                           Criterion::criterionWithAgent(m_agent, "c")};
    const auto node = Criterion::criterionWithAgent(m_agent, "root", given);
    EXPECT_EQ(*node->children(), given);
    EXPECT_EQ(node->numberOfChildren(), 3);
    EXPECT_EQ(node->childAtIndex(1), given[1]);
    const auto list = node->children();
    node->addChild(Criterion::criterionWithAgent(m_agent, "d"));
    EXPECT_EQ(list->size(), 4u) << "the list itself grows, for whoever holds it";
    EXPECT_EQ(node->children(), list);
    EXPECT_EQ(given.size(), 3u) << "what is added to the node is not added to the list it was made of";
    given.clear();
    EXPECT_EQ(node->numberOfChildren(), 4);
    EXPECT_EQ(Criterion::criterionWithAgent(m_agent, "root", given)->children(), nullptr)
        << "an empty list is none";
}

TEST_F(CriterionTree, AnIndexOutsideTheListThrowsAndAskedOfAnAbsentListAnswersNothing) {
    const auto node =
        Criterion::criterionWithAgent(m_agent, "root", {Criterion::criterionWithAgent(m_agent, "a")});
    EXPECT_THROW(node->childAtIndex(1), std::out_of_range);
    EXPECT_THROW(node->childAtIndex(-1), std::out_of_range);
    EXPECT_EQ(Criterion::criterionWithAgent(m_agent)->childAtIndex(5), nullptr);
}

TEST_F(CriterionTree, EqualityIsOfNamesAloneAndNamelessNodesEqualNothing) {
    const auto sound = PlaySoundCriterion::criterionWithAgent(m_agent);
    const auto plain = Criterion::criterionWithAgent(m_agent, "Play Sound");
    EXPECT_TRUE(sound->isEqual(plain.get()));
    EXPECT_TRUE(plain->isEqual(sound.get()));
    EXPECT_FALSE(plain->isEqual(Criterion::criterionWithAgent(m_agent, "play sound").get()));
    EXPECT_FALSE(plain->isEqual(nullptr));
    const auto separator = SeparatorCriterion::criterionWithAgent(m_agent);
    EXPECT_FALSE(separator->isEqual(SeparatorCriterion::criterionWithAgent(m_agent).get()));
    EXPECT_FALSE(separator->isEqual(separator.get())) << "a nameless node does not even equal itself";
    EXPECT_NE(sound->hash(), plain->hash()) << "the hash is of the identity";
}

TEST_F(CriterionTree, TheListOfANodeThatGoesIsSeenEmptyByWhoeverHoldsIt) {
    auto node = Criterion::criterionWithAgent(m_agent, "root", {Criterion::criterionWithAgent(m_agent, "a")});
    const auto list = node->children();
    node.reset();
    EXPECT_TRUE(list->empty());
}

TEST_F(CriterionTree, ADescriptionEndsWithTheDisplayValue) {
    const auto named = Criterion::criterionWithAgent(m_agent, "Yes");
    EXPECT_EQ(named->description(), defaultDescription(*named) + " Yes");
    const auto nameless = Criterion::criterionWithAgent(m_agent);
    EXPECT_EQ(nameless->description(), defaultDescription(*nameless) + " (null)");
}

TEST_F(CriterionTree, EveryCallForAControlMakesANewOne) {
    const auto field = TextFieldCriterion::criterionWithAgent(m_agent);
    const auto first = std::get<std::shared_ptr<TextField>>(field->displayValue());
    EXPECT_NE(first, std::get<std::shared_ptr<TextField>>(field->displayValue()));
    const auto separator = SeparatorCriterion::criterionWithAgent(m_agent);
    EXPECT_TRUE(std::get<std::shared_ptr<MenuItem>>(separator->displayValue())->isSeparatorItem());
}

TEST_F(CriterionTree, AMissingInterfaceFileShowsNothing) {
    m_world.interfaceFiles().remove("TextField");
    m_world.interfaceFiles().remove("PopUpButton");
    EXPECT_EQ(TextFieldCriterion::criterionWithAgent(m_agent)->displayValue(), DisplayValue{});
    EXPECT_EQ(PopUpCriterion::criterionWithAgent(m_agent)->displayValue(), DisplayValue{});
}

TEST_F(CriterionTree, OfWhatAnInterfaceFileHoldsTheFirstControlOfTheWantedKindIsShown) {
    const auto first = std::make_shared<TextField>("first");
    const auto popUp = std::make_shared<PopUpButton>();
    std::vector<std::shared_ptr<Object>> held = {std::make_shared<Criterion>(), popUp, first,
                                                 std::make_shared<TextField>("second"),
                                                 std::make_shared<PopUpButton>()};
    m_world.interfaceFiles().set("TextField", [&held](InterfaceOwner* owner) {
        EXPECT_EQ(owner, nullptr) << "nobody owns the file";
        return held;
    });
    m_world.interfaceFiles().set("PopUpButton", [&held](InterfaceOwner*) { return held; });
    EXPECT_EQ(TextFieldCriterion::criterionWithAgent(m_agent)->displayValue(), DisplayValue{first});
    EXPECT_EQ(PopUpCriterion::criterionWithAgent(m_agent)->displayValue(), DisplayValue{popUp});
    held = {std::make_shared<Criterion>()};
    EXPECT_EQ(TextFieldCriterion::criterionWithAgent(m_agent)->displayValue(), DisplayValue{});
    EXPECT_EQ(PopUpCriterion::criterionWithAgent(m_agent)->displayValue(), DisplayValue{});
}

TEST_F(CriterionTree, ThePopUpListsSoundsInTheFoldersOrderBehindTheItemsOfItsFile) {
    m_world.files().setFolder("/resources", {"b.mp3", "a.wav", "readme.txt", "Chime.WAV", "bell.wav.old"});
    m_world.interfaceFiles().set("PopUpButton", [](InterfaceOwner* owner) {
        EXPECT_NE(owner, nullptr) << "the node itself owns the file";
        auto popUp = std::make_shared<PopUpButton>();
        popUp->addItemWithTitle("Silence");
        return std::vector<std::shared_ptr<Object>>{std::make_shared<TextField>(), popUp};
    });
    const auto node = PopUpCriterion::criterionWithAgent(m_agent);
    const auto popUp = std::get<std::shared_ptr<PopUpButton>>(node->displayValue());
    EXPECT_THAT(popUp->itemTitles(), ElementsAre("Silence", "b.mp3", "a.wav", "bell.wav.old"));
    EXPECT_EQ(node->getArrayOfSounds()->size(), 5u) << "the listing itself is not filtered";
}

TEST_F(CriterionTree, AFolderThatCannotBeListedGivesAPopUpWithoutSounds) {
    const auto node = PopUpCriterion::criterionWithAgent(m_agent);
    EXPECT_FALSE(node->getArrayOfSounds());
    EXPECT_TRUE(std::get<std::shared_ptr<PopUpButton>>(node->displayValue())->itemTitles().empty());
}

struct Catalogue {
    std::shared_ptr<Criterion> root;
    std::string className;
    std::string name;
    std::vector<std::string> children;  // class and name
};

TEST_F(CriterionTree, EveryActionBuildsItsSubtreeUnderItsExactName) {
    const std::vector<Catalogue> catalogue = {
        {SendEmailCriterion::criterionWithAgent(m_agent),
         "SendEmailCriterion",
         "Send an email to",
         {"TextFieldCriterion (null)"}},
        {SendSMSCriterion::criterionWithAgent(m_agent),
         "SendSMSCriterion",
         "Send an SMS message to",
         {"TextFieldCriterion (null)"}},
        {RunScriptCriterion::criterionWithAgent(m_agent),
         "RunScriptCriterion",
         "Run script",
         {"TextFieldCriterion (null)"}},
        {PlaySoundCriterion::criterionWithAgent(m_agent),
         "PlaySoundCriterion",
         "Play Sound",
         {"PopUpCriterion (null)"}},
        {SpeakTextCriterion::criterionWithAgent(m_agent),
         "SpeakTextCriterion",
         "Speak Text",
         {"TextFieldCriterion (null)"}},
        {SayCurrentConditionsCriterion::criterionWithAgent(m_agent),
         "SayCurrentConditionsCriterion",
         "Speak Conditions",
         {"Criterion Yes", "Criterion No"}},
    };
    for (const Catalogue& entry : catalogue) {
        EXPECT_EQ(entry.root->className(), entry.className);
        EXPECT_EQ(entry.root->name(), entry.name);
        EXPECT_EQ(entry.root->displayValue(), DisplayValue{entry.name});
        EXPECT_EQ(entry.root->agent(), m_agent);
        std::vector<std::string> children;
        for (const auto& child : *entry.root->children()) {
            children.push_back(child->className() + " " + child->name().value_or("(null)"));
            EXPECT_EQ(child->agent(), m_agent) << "every node carries the root's agent";
            EXPECT_EQ(child->numberOfChildren(), 0);
        }
        EXPECT_EQ(children, entry.children) << entry.name;
    }
}

class LouderSpeech : public SpeakTextCriterion {
  public:
    std::string className() const override { return "LouderSpeech"; }
};

class ThinSeparator : public SeparatorCriterion {
  public:
    std::string className() const override { return "ThinSeparator"; }
};

TEST_F(CriterionTree, ASubclassThatAddsNothingButItsNameBuildsItself) {
    const std::shared_ptr<LouderSpeech> action = LouderSpeech::criterionWithAgent<LouderSpeech>(m_agent);
    EXPECT_EQ(action->className(), "LouderSpeech");
    EXPECT_EQ(action->name(), "Speak Text");
    EXPECT_EQ(action->childAtIndex(0)->className(), "TextFieldCriterion");
    const auto separator = ThinSeparator::criterionWithAgent<ThinSeparator>(m_agent);
    EXPECT_EQ(separator->className(), "ThinSeparator");
    EXPECT_TRUE(std::get<std::shared_ptr<MenuItem>>(separator->displayValue())->isSeparatorItem());
}

}  // namespace
}  // namespace vigil
