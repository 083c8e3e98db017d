#include <cstdlib>

#include <gtest/gtest.h>

#include "host/kit/KeyedArchive.hpp"
#include "host/kit/PlugInLoader.hpp"
#include "host_contract/QRVPlugIn.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

// Run by Build.cmake with the bundle that it has built outside the tree, against the installed kit.

namespace vigil {
namespace {

TEST(ForeignPlugIn, countsNotificationsAndComesBackFromItsArchive) {
    const char* const bundle = std::getenv("VIGIL_FOREIGN_BUNDLE");
    ASSERT_TRUE(bundle) << "VIGIL_FOREIGN_BUNDLE has to name the bundle";
    const auto module = loadPlugIn(bundle);
    ASSERT_TRUE(module) << module.error().message;
    EXPECT_EQ(module.value().identifier(), "org.example.tiny");

    FakeWorld world;
    const World::Scope scope(world);
    const auto agent = std::make_shared<FakeAgent>(world);
    const auto plugIn = std::dynamic_pointer_cast<QRVPlugIn>(module.value().make("TinyCounter"));
    ASSERT_TRUE(plugIn);
    ASSERT_TRUE(plugIn->initWithAgent(agent, nullptr));
    EXPECT_EQ(plugIn->textDescription(), "0 notifications");

    plugIn->start();
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(FakeAgent::announce(agent, {AgentProperty::number("t", i, world.now())}).empty());
    plugIn->stop();
    FakeAgent::announce(agent, {AgentProperty::number("t", 9, world.now())});
    EXPECT_EQ(plugIn->textDescription(), "3 notifications");

    const auto text = writeArchive(plugIn, agent.get());
    ASSERT_TRUE(text) << text.error().message;
    const auto other = std::make_shared<FakeAgent>(world);
    const auto again = readArchive(text.value(), other);
    ASSERT_TRUE(again) << again.error().message;
    const auto restored = std::dynamic_pointer_cast<QRVPlugIn>(again.value());
    ASSERT_TRUE(restored);
    EXPECT_EQ(restored->textDescription(), "3 notifications");
    EXPECT_EQ(restored->agent(), other);
}

}  // namespace
}  // namespace vigil
