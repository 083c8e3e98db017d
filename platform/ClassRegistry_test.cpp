#include "platform/ClassRegistry.hpp"

#include <gtest/gtest.h>

#include "platform/Controls.hpp"

namespace vigil {
namespace {

TEST(ClassRegistry, KnowsTheControlsAndMakesFreshObjects) {
    auto& registry = ClassRegistry::shared();
    EXPECT_TRUE(registry.contains("PopUpButton"));
    const auto made = registry.make("TextField");
    ASSERT_NE(std::dynamic_pointer_cast<TextField>(made), nullptr);
    EXPECT_NE(registry.make("TextField"), made);
    EXPECT_EQ(registry.make("TextFeld"), nullptr);
}

TEST(ClassRegistry, ANameKeepsItsFirstFactoryAndItsBundle) {
    auto& registry = ClassRegistry::shared();
    const auto bundle = std::make_shared<Bundle>();
    EXPECT_TRUE(registry.add("ClassRegistryTestClass", makeObject<TextField>, bundle));
    EXPECT_TRUE(registry.add("ClassRegistryTestClass", makeObject<TextField>));
    EXPECT_FALSE(registry.add("ClassRegistryTestClass", makeObject<PopUpButton>));
    EXPECT_EQ(registry.bundleForClass("ClassRegistryTestClass"), bundle);
    EXPECT_NE(std::dynamic_pointer_cast<TextField>(registry.make("ClassRegistryTestClass")), nullptr);
    EXPECT_EQ(registry.bundleForClass("TextField"), nullptr);
}

}  // namespace
}  // namespace vigil
