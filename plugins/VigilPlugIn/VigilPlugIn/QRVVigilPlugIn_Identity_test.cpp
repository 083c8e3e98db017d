#include <gmock/gmock.h>

#include "platform/ClassRegistry.hpp"
#include "platform/Image.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/ModuleClasses.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

extern "C" {
extern const char VigilPlugInVersionString[];
extern const double VigilPlugInVersionNumber;
}

constexpr const char* kText =
    "Vigil monitors one or more conditions that connect to a set actions. Actions execute when the "
    "conditions are met.";

class Identity : public testing::Test {
  protected:
    Identity() {
        auto bundle = std::make_shared<Bundle>();
        bundle->resourcePath = "/resources";
        for (const ModuleClass& entry : moduleClasses())
            ClassRegistry::shared().add(entry.name, entry.make, bundle);
    }

    FakeWorld m_world;
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
    std::shared_ptr<QRVVigilPlugIn> m_monitor = makePlugIn<QRVVigilPlugIn>(m_agent, nullptr);
};

/// A monitor from a bundle that the test describes.
class VersionedMonitor : public QRVVigilPlugIn {
  public:
    std::string className() const override { return "VersionedMonitor"; }
};

/// A monitor from no bundle at all.
class LooseMonitor : public QRVVigilPlugIn {
  public:
    std::string className() const override { return "LooseMonitor"; }
};

std::string html(const std::string& version, const std::string& enabled) {
    return "<table><tr><th colspan=2 align=center>Vigil Plug-In - Version " + version +
           "</th></tr><tr><td colspan=2><i>" + kText + "</i></td></tr><tr><td>Enabled?</td><td align=right>" +
           enabled + "</td></tr></table>";
}

TEST_F(Identity, AMonitorAnswersItsNameItsTextAndItsGroup) {
    EXPECT_EQ(m_monitor->name(), "Vigil");
    EXPECT_EQ(m_monitor->textDescription(), kText);
    EXPECT_EQ(m_monitor->group(), "VIGIL");
}

TEST_F(Identity, AMonitorMayBeUndockedRenamedAndDeleted) {
    EXPECT_TRUE(m_monitor->isUndockable());
    EXPECT_TRUE(m_monitor->isRenamable());
    EXPECT_TRUE(m_monitor->isDeletable());
}

TEST_F(Identity, ItsDescriptionsInXmlAndJsonAreEmptyTextsNotAbsentOnes) {
    EXPECT_EQ(m_monitor->xmlDescription(), std::optional<std::string>(""));
    EXPECT_EQ(m_monitor->jsonDescription(), std::optional<std::string>(""));
}

TEST_F(Identity, TheTableTellsTheBundlesOwnVersionsTheTextAndWhetherItIsEnabled) {
    auto bundle = std::make_shared<Bundle>(Bundle{"org.example", "3.1b", -7, "/elsewhere"});
    ClassRegistry::shared().add("VersionedMonitor", &makeObject<VersionedMonitor>, bundle);
    const auto monitor = makePlugIn<VersionedMonitor>(m_agent, nullptr);
    EXPECT_EQ(monitor->htmlDescription(), html("3.1b (-7)", "No"));
    monitor->setEvaluating(true);
    EXPECT_EQ(monitor->htmlDescription(), html("3.1b (-7)", "Yes"));
    monitor->setEvaluating(false);
    EXPECT_EQ(monitor->htmlDescription(), html("3.1b (-7)", "No"));
}

TEST_F(Identity, WithoutABundleTheVersionReadsAsAbsentAndThereIsNoIcon) {
    const auto monitor = makePlugIn<LooseMonitor>(m_agent, nullptr);
    EXPECT_EQ(monitor->htmlDescription(), html("(null) (0)", "No"));
    EXPECT_EQ(monitor->icon(), nullptr);
}

TEST_F(Identity, TheIconIsTheImageVigilOfTheBundleLookedUpAnewOnEachCall) {
    EXPECT_EQ(m_monitor->icon(), nullptr) << "the folder does not hold it yet";
    m_world.files().setFolder("/resources", {"bell.wav", "vigil.png"});
    const auto icon = m_monitor->icon();
    ASSERT_TRUE(icon);
    EXPECT_EQ(icon->name(), "vigil");
    EXPECT_EQ(icon->path(), "/resources/vigil.png");
    EXPECT_NE(m_monitor->icon(), icon);
}

TEST_F(Identity, TheVersionSymbolsHoldTheirTextWithTwoBlanksAndALineFeedAndTheirNumber) {
    EXPECT_EQ(std::string(VigilPlugInVersionString), "@(#)PROGRAM:VigilPlugIn  PROJECT:VigilPlugIn-10\n");
    EXPECT_EQ(VigilPlugInVersionNumber, 10.0);
}

}  // namespace
}  // namespace vigil
