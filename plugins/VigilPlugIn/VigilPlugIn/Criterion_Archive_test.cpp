#include <gmock/gmock.h>

#include "platform/ClassRegistry.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Actions.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Display.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/ModuleClasses.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"
#include "tests/support/MemoryArchive.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CriterionArchive : public testing::Test {
  protected:
    CriterionArchive() {
        auto bundle = std::make_shared<Bundle>();
        bundle->resourcePath = "/resources";
        for (const ModuleClass& entry : moduleClasses())
            ClassRegistry::shared().add(entry.name, entry.make, bundle);
    }

    /// "Class name(child child)", so that two trees can be compared at a glance.
    static std::string outline(const Criterion& node) {
        std::string text = node.className() + " " + node.name().value_or("-");
        if (!node.children()) return text;
        text += "(";
        for (const auto& child : *node.children())
            text += (text.back() == '(' ? "" : ", ") + outline(*child);
        return text + ")";
    }

    FakeWorld m_world;
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
};

TEST_F(CriterionArchive, ATreeReadBackHasTheClassNameAndChildrenOfEveryNode) {
    const auto root = Criterion::criterionWithAgent(
        m_agent, "all",
        {SendEmailCriterion::criterionWithAgent(m_agent), SendSMSCriterion::criterionWithAgent(m_agent),
         RunScriptCriterion::criterionWithAgent(m_agent), PlaySoundCriterion::criterionWithAgent(m_agent),
         SeparatorCriterion::criterionWithAgent(m_agent), SpeakTextCriterion::criterionWithAgent(m_agent),
         SayCurrentConditionsCriterion::criterionWithAgent(m_agent)});
    root->setActionBlock([] {});
    MemoryArchive archive(root);
    const auto back = archive.readAs<Criterion>(m_agent);
    ASSERT_TRUE(back);
    EXPECT_EQ(outline(*back),
              "Criterion all(SendEmailCriterion Send an email to(TextFieldCriterion -), "
              "SendSMSCriterion Send an SMS message to(TextFieldCriterion -), "
              "RunScriptCriterion Run script(TextFieldCriterion -), "
              "PlaySoundCriterion Play Sound(PopUpCriterion -), SeparatorCriterion -, "
              "SpeakTextCriterion Speak Text(TextFieldCriterion -), "
              "SayCurrentConditionsCriterion Speak Conditions(Criterion Yes, Criterion No))");
    EXPECT_FALSE(back->actionBlock()) << "the block is not archived";
    EXPECT_NE(back, root);
}

TEST_F(CriterionArchive, ANodeWritesAgentNameAndChildrenInThatOrderAndNothingForWhatIsAbsent) {
    MemoryArchive whole(RunScriptCriterion::criterionWithAgent(m_agent));
    EXPECT_THAT(whole.rootKeys(), ElementsAre("agent", "name", "children"));
    MemoryArchive bare(SeparatorCriterion::criterionWithAgent(m_agent));
    EXPECT_THAT(bare.rootKeys(), ElementsAre("agent"));
}

TEST_F(CriterionArchive, EveryNodeReadBackRefersToTheReadersAgent) {
    MemoryArchive archive(SayCurrentConditionsCriterion::criterionWithAgent(m_agent));
    const auto other = std::make_shared<FakeAgent>(m_world);
    const auto back = archive.readAs<Criterion>(other);
    EXPECT_EQ(back->agent(), other);
    EXPECT_EQ(back->childAtIndex(0)->agent(), other);
    EXPECT_EQ(back->childAtIndex(1)->agent(), other);
}

TEST_F(CriterionArchive, EntriesThatAreMissingLeaveTheirFieldsAbsent) {
    MemoryArchive archive(RunScriptCriterion::criterionWithAgent(m_agent));
    archive.rootEntries().clear();
    const auto back = archive.readAs<Criterion>(m_agent);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->agent(), nullptr);
    EXPECT_FALSE(back->name());
    EXPECT_EQ(back->children(), nullptr);
    EXPECT_THAT(archive.refusals(), IsEmpty());
}

TEST_F(CriterionArchive, AgentNameAndChildrenAreReadInThatOrder) {
    MemoryArchive archive(Criterion::criterionWithAgent(m_agent, "root"));
    for (const char* key : {"children", "name", "agent"})
        archive.setRootEntry(key, Value(7));
    archive.read(m_agent);
    std::vector<std::string> keys;
    for (const std::string& refusal : archive.refusals())
        keys.push_back(refusal.substr(0, refusal.find(':')));
    EXPECT_THAT(keys, ElementsAre("Criterion.agent", "Criterion.name", "Criterion.children"));
}

TEST_F(CriterionArchive, AnEmptyListOfChildrenIsNotAnAbsentOne) {
    const auto node = Criterion::criterionWithAgent(m_agent, "leaf");
    node->setChildren(std::make_shared<CriterionList>());
    MemoryArchive archive(node);
    const auto back = archive.readAs<Criterion>(m_agent);
    ASSERT_TRUE(back->children());
    EXPECT_TRUE(back->children()->empty());
}

TEST_F(CriterionArchive, AChildThatIsNoNodeIsRefused) {
    MemoryArchive archive(Criterion::criterionWithAgent(m_agent, "root"));
    archive.setRootEntry("children", ValueList{Value("child")});
    archive.read(m_agent);
    EXPECT_THAT(archive.refusals(), ElementsAre("Criterion.children: expected a list of criteria"));
}

}  // namespace
}  // namespace vigil
