#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilToolbarPlugIn.hpp"

#include <gmock/gmock.h>

#include "host_contract/QRVKit.hpp"
#include "platform/ClassRegistry.hpp"
#include "platform/ToolbarItem.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/ModuleClasses.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeSiteWindowController.hpp"
#include "tests/support/FakeWorld.hpp"
#include "tests/support/MemoryArchive.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;

/// The toolbar plug-in of a bundle that the test describes.
class OtherToolbar : public QRVVigilToolbarPlugIn {
  public:
    std::string className() const override { return "OtherToolbar"; }
};

class Toolbar : public testing::Test {
  protected:
    Toolbar() {
        auto bundle = std::make_shared<Bundle>();
        bundle->resourcePath = "/resources";
        for (const ModuleClass& entry : moduleClasses())
            ClassRegistry::shared().add(entry.name, entry.make, bundle);
        ClassRegistry::shared().add(
            "OtherToolbar", &makeObject<OtherToolbar>,
            std::make_shared<Bundle>(Bundle{"org.example.toolbar", "3.1", 7, "/elsewhere"}));
    }

    FakeWorld m_world;
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
    std::shared_ptr<FakeSiteWindowController> m_site = std::make_shared<FakeSiteWindowController>();
    std::shared_ptr<QRVVigilToolbarPlugIn> m_toolbar = makePlugIn<QRVVigilToolbarPlugIn>(m_agent, m_site);
};

TEST_F(Toolbar, ANewOneHasTheTitleVigilAsTheLastUsed) {
    EXPECT_EQ(m_toolbar->lastUsedTitle(), "Vigil");
}

TEST_F(Toolbar, ABaseThatComesToNothingGivesNone) {
    MemoryArchive archive(m_toolbar);
    m_world.plugInHost().admitsAll = false;
    EXPECT_EQ(makePlugIn<QRVVigilToolbarPlugIn>(m_agent, m_site), nullptr);
    EXPECT_EQ(archive.readAs<QRVVigilToolbarPlugIn>(m_agent), nullptr);
}

TEST_F(Toolbar, TheItemBearsTheBundlesIdentifierTheNameAndTheIcon) {
    m_world.files().setFolder("/elsewhere", {"vigil.svg"});
    const auto toolbar = makePlugIn<OtherToolbar>(m_agent, m_site);
    const auto item = toolbar->toolbarItem();
    ASSERT_TRUE(item);
    EXPECT_EQ(item->itemIdentifier(), "org.example.toolbar");
    EXPECT_EQ(item->label(), "Vigil");
    ASSERT_TRUE(item->image());
    EXPECT_EQ(item->image()->path(), "/elsewhere/vigil.svg");
    EXPECT_EQ(item->target().get(), toolbar.get());
    EXPECT_EQ(item->action(), "toolbarItemAction:");
    EXPECT_NE(toolbar->toolbarItem(), item) << "a new item on every call";
}

TEST_F(Toolbar, TwoPressesAddTwoMonitorsOfTheStationWithTitlesOfTheirOwn) {
    const auto item = m_toolbar->toolbarItem();
    EXPECT_TRUE(item->press());
    EXPECT_EQ(m_site->selected, m_site->plugIns.at(0));
    EXPECT_TRUE(item->press());
    ASSERT_EQ(m_site->plugIns.size(), 2u);
    EXPECT_NE(m_site->plugIns[0], m_site->plugIns[1]);
    EXPECT_THAT(m_site->titles(), ElementsAre("Vigil", "Vigil 2"));
    EXPECT_EQ(m_site->selected, m_site->plugIns[1]);
    for (const auto& plugIn : m_site->plugIns) {
        EXPECT_EQ(plugIn->agent(), m_agent);
        EXPECT_EQ(plugIn->siteWindowController(), m_site);
        const auto monitor = std::dynamic_pointer_cast<QRVVigilPlugIn>(plugIn);
        ASSERT_TRUE(monitor);
        EXPECT_EQ(monitor->predicate()->printed(), "windChill.unitValue < 10 OR windSpeed.unitValue > 25");
        EXPECT_FALSE(monitor->evaluating());
    }
}

TEST_F(Toolbar, ANewMonitorIsCalledVigilWhateverTitleWasUsedLast) {
    m_toolbar->setLastUsedTitle("Gale");
    m_toolbar->createNewVigil();
    EXPECT_THAT(m_site->titlesAsked, ElementsAre("Vigil"));
    EXPECT_EQ(m_toolbar->lastUsedTitle(), "Gale");
}

TEST_F(Toolbar, TheActionIgnoresItsSender) {
    m_toolbar->toolbarItemAction(nullptr);
    m_toolbar->toolbarItemAction(m_agent.get());
    EXPECT_EQ(m_site->plugIns.size(), 2u);
}

TEST_F(Toolbar, AMonitorThatDoesNotComeToBeIsNotAdded) {
    m_world.plugInHost().admitsAll = false;
    EXPECT_NO_THROW(m_toolbar->createNewVigil());
    EXPECT_TRUE(m_site->plugIns.empty());
    EXPECT_TRUE(m_world.log().lines().empty()) << "nothing is reported";
}

TEST_F(Toolbar, WithoutAWindowAPressDoesNothing) {
    m_site = nullptr;
    EXPECT_NO_THROW(m_toolbar->createNewVigil());
}

TEST_F(Toolbar, TheArchiveHoldsTheBasesEntriesAndThenTheTitle) {
    m_toolbar->setLastUsedTitle("Gale");
    m_toolbar->setTitle("Item");
    MemoryArchive archive(m_toolbar);
    EXPECT_THAT(archive.rootKeys(), ElementsAre("agent", "title", "lastUsedTitle"));
    const auto restored = archive.readAs<QRVVigilToolbarPlugIn>(m_agent);
    ASSERT_TRUE(restored);
    EXPECT_EQ(restored->lastUsedTitle(), "Gale");
    EXPECT_EQ(restored->title(), "Item");
    EXPECT_EQ(restored->agent(), m_agent);
}

TEST_F(Toolbar, AnArchiveWithoutTheTitleRestoresItAsAbsentAndMonitorsAreMadeAllTheSame) {
    MemoryArchive archive(m_toolbar);
    archive.removeRootEntry("lastUsedTitle");
    const auto restored = archive.readAs<QRVVigilToolbarPlugIn>(m_agent);
    ASSERT_TRUE(restored);
    EXPECT_EQ(restored->lastUsedTitle(), std::nullopt);
    restored->setSiteWindowController(m_site);
    EXPECT_TRUE(restored->toolbarItem()->press());
    EXPECT_THAT(m_site->titles(), ElementsAre("Vigil"));
    MemoryArchive again(restored);
    EXPECT_THAT(again.rootKeys(), testing::Not(testing::Contains("lastUsedTitle")));
}

TEST_F(Toolbar, ItIsDescribedLikeAMonitorButWithoutTextAndSwitchInItsTable) {
    const auto toolbar = makePlugIn<OtherToolbar>(m_agent, m_site);
    EXPECT_EQ(toolbar->name(), "Vigil");
    EXPECT_EQ(toolbar->textDescription(), makePlugIn<QRVVigilPlugIn>(m_agent, m_site)->textDescription());
    EXPECT_EQ(toolbar->htmlDescription(),
              "<table><tr><th colspan=2 align=center>Vigil Plug-In - Version 3.1 (7)</th></tr></table>");
}

TEST_F(Toolbar, DescriptionsInXmlAndJsonAndTheGroupAreAbsentWhereTheMonitorsAreEmptyAndVigil) {
    EXPECT_EQ(m_toolbar->xmlDescription(), std::nullopt);
    EXPECT_EQ(m_toolbar->jsonDescription(), std::nullopt);
    EXPECT_EQ(m_toolbar->group(), std::nullopt);
    const auto monitor = makePlugIn<QRVVigilPlugIn>(m_agent, m_site);
    EXPECT_EQ(monitor->xmlDescription(), "");
    EXPECT_EQ(monitor->jsonDescription(), "");
    EXPECT_EQ(monitor->group(), "VIGIL");
}

TEST_F(Toolbar, WhatItDoesNotSayOfItselfIsTheBasesAnswer) {
    EXPECT_FALSE(m_toolbar->isUndockable());
    EXPECT_FALSE(m_toolbar->isRenamable());
    EXPECT_FALSE(m_toolbar->isDeletable());
}

TEST_F(Toolbar, LoadedAndUnloadedItObservesNothing) {
    m_toolbar->didLoad();
    EXPECT_EQ(m_world.notificationCenter().observerCount(kAppRealTimeDataNotification, m_agent), 0u);
    m_toolbar->willUnload();
}

TEST_F(Toolbar, TheItemOutlivesThePlugInAndThenDoesNothing) {
    const auto item = m_toolbar->toolbarItem();
    m_toolbar = nullptr;
    EXPECT_FALSE(item->press());
    EXPECT_TRUE(m_site->plugIns.empty());
}

}  // namespace
}  // namespace vigil
