#include <algorithm>
#include <atomic>
#include <functional>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "host/kit/HostedPlugIns.hpp"
#include "host/kit/InterfaceFile.hpp"
#include "host/kit/KeyedArchive.hpp"
#include "host/kit/KitClasses.hpp"
#include "host/kit/LiveWorld.hpp"
#include "host/kit/PlugInLoader.hpp"
#include "host/kit/RecordedScripts.hpp"
#include "host/kit/ReplayWorld.hpp"
#include "host/kit/StandardLog.hpp"
#include "host/kit/Station.hpp"
#include "host_contract/QRVKit.hpp"

namespace vigil {
namespace {

using Clock = std::chrono::steady_clock;

/// Puts a probe through its life in a world: archived, restored, started, fed by `feed`, stopped, unloaded.
/// Gives its table.
template <class TheWorld>
std::string probed(TheWorld& world, const std::function<void(Station&)>& feed) {
    registerKitClasses();
    const auto module = loadPlugIn(VIGIL_BINARY_DIR "/lib/vigil/ContractProbe");
    if (!module) return module.error().message;
    RecordedScripts scripts(world);
    const auto station = std::make_shared<Station>(world, "Probed", scripts);
    const World::Scope scope(world);
    const auto made = std::dynamic_pointer_cast<QRVPlugIn>(module.value().make("ContractProbe"));
    if (!made->initWithAgent(station, nullptr)) return "no probe came to be";
    const auto archive = writeArchive(made, station.get());
    if (!archive) return archive.error().message;
    const auto restored = readArchive(archive.value(), station);
    if (!restored) return restored.error().message;
    HostedPlugIns plugIns(world);
    const auto probe = std::dynamic_pointer_cast<QRVPlugIn>(restored.value());
    HostedPlugIn& hosted = plugIns.add(probe);
    hosted.call([](QRVPlugIn& plugIn) { plugIn.didLoad(); });
    if (hosted.start()) return "the probe does not start";
    feed(*station);
    hosted.stop();
    feed(*station);
    plugIns.remove(*probe);
    return probe->textDescription();
}

std::shared_ptr<const Readings> batch(int number) {
    return Readings::make({AgentProperty::number("a", number, Date(number))});
}

void expectAllKept(const std::string& table) {
    EXPECT_EQ(table.find("BROKEN"), std::string::npos) << table;
    EXPECT_EQ(table.find("unseen"), std::string::npos) << table;
    EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 19) << table;
}

TEST(HostProbe, aReplayKeepsWhatAHostPromises) {
    StandardLog log(stderr, 0, [] { return Date(); });
    InterfaceFile files;
    ReplayWorld world(log, files, "");
    int number = 0;
    expectAllKept(probed(world, [&](Station& station) {
        for (int i = 0; i < 3; ++i) {
            world.turnTo(Date(++number));
            EXPECT_TRUE(station.announce(batch(number)).empty());
        }
    }));
}

TEST(HostProbe, aLiveSiteKeepsWhatAHostPromises) {
    StandardLog log(stderr, 0, [] { return Date(); });
    InterfaceFile files;
    LiveWorld world(log, files, "");
    expectAllKept(probed(world, [&](Station& station) {
        std::atomic<bool> done = false;
        std::thread feed([&] {
            for (int i = 0; i < 20; ++i)
                EXPECT_TRUE(station.announce(batch(i)).empty());
            done = true;
            world.mailbox().wake();
        });
        while (!done)
            world.mailbox().serveOne(Clock::now() + std::chrono::seconds(1));
        feed.join();
    }));
}

TEST(HostProbe, aHostThatAnnouncesWithoutTheReadingsIsFoundOut) {
    StandardLog log(stderr, 0, [] { return Date(); });
    InterfaceFile files;
    ReplayWorld world(log, files, "");
    const std::string table = probed(world, [&](Station& station) {
        const World::Scope scope(world);
        world.notificationCenter().post({kAppRealTimeDataNotification, station.shared_from_this(), {}});
    });
    EXPECT_NE(table.find("BROKEN  a notification holds readings\n"), std::string::npos) << table;
    EXPECT_NE(table.find("unseen  the station's current readings include"), std::string::npos) << table;
}

TEST(HostProbe, aHostWhoseClockGoesBackIsFoundOut) {
    StandardLog log(stderr, 0, [] { return Date(); });
    InterfaceFile files;
    ReplayWorld world(log, files, "");
    int number = 0;
    const std::string table = probed(world, [&](Station& station) {
        for (int i = 0; i < 2; ++i) {
            world.turnTo(Date(--number));
            EXPECT_TRUE(station.announce(batch(number)).empty());
        }
    });
    EXPECT_NE(table.find("BROKEN  the clock does not go back"), std::string::npos) << table;
}

}  // namespace
}  // namespace vigil
