#include "host_contract/QRVPlugIn.hpp"

#include <gtest/gtest.h>

#include "host_contract/CycleObserver.hpp"
#include "host_contract/QRVKit.hpp"
#include "platform/ClassRegistry.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"
#include "tests/support/MemoryArchive.hpp"

namespace vigil {
namespace {

/// A plug-in that adds nothing but its name.
class Plain : public QRVPlugIn {
  public:
    std::string className() const override { return "ContractTestPlain"; }
};

class Site : public SiteWindowController {
  public:
    void addPlugIn(std::shared_ptr<QRVPlugIn>, bool, bool) override {}
};

class QRVPlugInTest : public testing::Test {
  protected:
    QRVPlugInTest() {
        auto bundle = std::make_shared<Bundle>();
        bundle->identifier = "test.plain";
        bundle->bundleVersion = 42;
        ClassRegistry::shared().add("ContractTestPlain", makeObject<Plain>, bundle);
    }
    FakeWorld world;
    std::shared_ptr<FakeAgent> agent = std::make_shared<FakeAgent>(world);
};

TEST_F(QRVPlugInTest, TheInitialiserSetsAgentAndControllerAndDoesNotOwnTheSite) {
    auto site = std::make_shared<Site>();
    const auto plugIn = makePlugIn<Plain>(agent, site);
    ASSERT_TRUE(plugIn);
    EXPECT_EQ(plugIn->agent(), agent);
    EXPECT_EQ(plugIn->siteWindowController(), site);
    site.reset();
    EXPECT_EQ(plugIn->siteWindowController(), nullptr);
}

TEST_F(QRVPlugInTest, AHostThatDoesNotAdmitTheClassGetsNoObject) {
    world.plugInHost().admitsAll = false;
    EXPECT_EQ(makePlugIn<Plain>(agent, nullptr), nullptr);
    world.plugInHost().admitsAll = true;
    MemoryArchive archive(makePlugIn<Plain>(agent, nullptr));
    world.plugInHost().admitsAll = false;
    EXPECT_EQ(archive.read(agent), nullptr);
}

TEST_F(QRVPlugInTest, WithoutAnAgentTheOpenWorldIsAsked) {
    world.plugInHost().admitsAll = false;
    EXPECT_NE(makePlugIn<Plain>(nullptr, nullptr), nullptr);
    const World::Scope scope(world);
    EXPECT_EQ(makePlugIn<Plain>(nullptr, nullptr), nullptr);
}

TEST_F(QRVPlugInTest, StartAndStopAnswerWhatTheHostSays) {
    const auto plugIn = makePlugIn<Plain>(agent, nullptr);
    EXPECT_EQ(plugIn->start(), nullptr);
    EXPECT_EQ(plugIn->stop(), nullptr);
    world.plugInHost().onStart = std::make_shared<FakeObstacle>();
    EXPECT_EQ(plugIn->start(), world.plugInHost().onStart);
    EXPECT_EQ(plugIn->stop(), nullptr);
}

TEST_F(QRVPlugInTest, AnArchiveKeepsTitleAndAgent) {
    const auto plugIn = makePlugIn<Plain>(agent, nullptr);
    plugIn->setTitle("Storm");
    MemoryArchive archive(plugIn);
    EXPECT_EQ(archive.rootKeys(), (std::vector<std::string>{"agent", "title"}));
    const auto other = std::make_shared<FakeAgent>(world);
    const auto read = archive.readAs<Plain>(other);
    EXPECT_EQ(read->title(), "Storm");
    EXPECT_EQ(read->agent(), other);
}

TEST_F(QRVPlugInTest, IdentifierAndVersionComeFromTheBundleOfTheClass) {
    const auto plugIn = makePlugIn<Plain>(agent, nullptr);
    EXPECT_EQ(plugIn->bundleIdentifier(), "test.plain");
    EXPECT_EQ(plugIn->bundleVersion(), 42);
}

TEST_F(QRVPlugInTest, TheBaseOffersNothingOfItsOwn) {
    const auto plugIn = makePlugIn<Plain>(agent, nullptr);
    EXPECT_EQ(plugIn->name(), "");
    EXPECT_EQ(plugIn->xmlDescription(), std::nullopt);
    EXPECT_EQ(plugIn->icon(), nullptr);
    EXPECT_EQ(plugIn->interfaceOwner(), nullptr);
    EXPECT_EQ(plugIn->cycleReporting(), nullptr);
    EXPECT_FALSE(plugIn->isRenamable());
}

TEST_F(QRVPlugInTest, TheKitAnswersForItsWorld) {
    world.setScriptsFolder("/ann/scripts");
    EXPECT_EQ(QRVKit::scriptsFolder(world), "/ann/scripts");
    EXPECT_EQ(&QRVLog::sharedLog(world), &world.log());
    EXPECT_EQ(HostWorld::current(), nullptr);
    const World::Scope scope(world);
    EXPECT_EQ(HostWorld::current(), &world);
    EXPECT_STREQ(kDataKey, "data") << "what a host posts its readings under";
}

TEST(CycleOutcome, HasAPrintableName) {
    EXPECT_STREQ(outcomeName(CycleOutcome::Waiting), "waiting");
    EXPECT_STREQ(outcomeName(CycleOutcome::Missed), "missed");
    EXPECT_STREQ(outcomeName(CycleOutcome::Fired), "fired");
}

}  // namespace
}  // namespace vigil
