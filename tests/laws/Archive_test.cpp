// What a monitor's archive gives back, whatever the monitor holds.

#include <gtest/gtest.h>

#include "host/kit/KeyedArchive.hpp"
#include "host/kit/KitClasses.hpp"
#include "platform/ClassRegistry.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/ModuleClasses.hpp"
#include "tests/laws/MonitorPicture.hpp"
#include "tests/laws/RandomMonitor.hpp"
#include "tests/support/ConditionGenerator.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

TEST(MonitorArchiveLaw, WhatIsWrittenReadsBackAsTheSameMonitorAndTheSameBytes) {
    registerKitClasses();
    for (const ModuleClass& entry : moduleClasses())
        ClassRegistry::shared().add(entry.name, entry.make);
    FakeWorld world;
    const World::Scope scope(world);
    const auto agent = std::make_shared<FakeAgent>(world);
    std::size_t bytes = 0;
    const int monitors = 1000 * test::longFactor();
    for (int seed = 1; seed <= monitors; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        test::RandomMonitor random(static_cast<std::uint32_t>(seed));
        const auto monitor = makePlugIn<QRVVigilPlugIn>(agent, nullptr);
        random.apply(*monitor);
        random.fill(*monitor);
        const auto text = writeArchive(monitor, agent.get());
        ASSERT_TRUE(text) << text.error().message;
        const auto read = readArchive(text.value(), agent);
        ASSERT_TRUE(read) << read.error().message << "\n" << text.value();
        const auto back = std::dynamic_pointer_cast<QRVVigilPlugIn>(read.value());
        ASSERT_TRUE(back);
        ASSERT_EQ(test::pictureOf(*back), test::pictureOf(*monitor));
        ASSERT_EQ(back->agent(), agent);
        ASSERT_EQ(writeArchive(back, agent.get()).value(), text.value());
        bytes += text.value().size();
    }
    EXPECT_GT(bytes, static_cast<std::size_t>(monitors) * 1000)
        << "the monitors hold too little to show anything";
}

}  // namespace
}  // namespace vigil
