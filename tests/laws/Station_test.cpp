// What a station's readings are after any batches, and that it delivers one notification at a time.

#include "host/kit/Station.hpp"

#include <atomic>
#include <map>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

#include "host/kit/RecordedScripts.hpp"
#include "host_contract/QRVKit.hpp"
#include "host_contract/QRVPlugIn.hpp"
#include "tests/laws/MonitorPicture.hpp"
#include "tests/laws/RandomMonitor.hpp"
#include "tests/support/ConditionGenerator.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

TEST(StationLaw, ItsReadingsAreTheLastOfEachKeyAfterAnyBatches) {
    for (int seed = 1; seed <= 300 * test::longFactor(); ++seed) {
        test::RandomMonitor random(static_cast<std::uint32_t>(seed));
        FakeWorld world;
        RecordedScripts scripts(world);
        const auto station = std::make_shared<Station>(world, "roof", scripts);
        std::map<std::string, std::string> expected;
        for (int step = 0; step < 30; ++step) {
            const auto batch = random.batch(Date(step));
            ASSERT_TRUE(station->announce(batch).empty());
            for (const AgentProperty& reading : batch->entries())
                expected[reading.propertyName()] = test::pictureOf(reading);
            std::map<std::string, std::string> found;
            for (const AgentProperty& reading : station->properties()->entries())
                EXPECT_TRUE(found.emplace(reading.propertyName(), test::pictureOf(reading)).second);
            ASSERT_EQ(found, expected) << "seed " << seed << ", step " << step;
        }
        ASSERT_EQ(station->droppedReadings(), 0u);
    }
}

/// Counts how many deliveries are under way at once.
class Counter : public QRVPlugIn {
  public:
    std::string className() const override { return "LawCounter"; }
    void heard(const Notification&) {
        const int now = ++m_inside;
        int most = mostInside;
        while (now > most && !mostInside.compare_exchange_weak(most, now)) {
        }
        std::this_thread::yield();
        ++heardOf;
        --m_inside;
    }
    std::atomic<int> mostInside = 0;
    std::atomic<int> heardOf = 0;

  private:
    std::atomic<int> m_inside = 0;
};

TEST(StationLaw, HoweverManyThreadsAnnounceOneNotificationAtATimeIsDelivered) {
    FakeWorld world;
    RecordedScripts scripts(world);
    const auto station = std::make_shared<Station>(world, "roof", scripts);
    const auto counter = makePlugIn<Counter>(station, nullptr);
    world.notificationCenter().addObserver(counter, &Counter::heard, kAppRealTimeDataNotification, station);
    const auto batch = Readings::make({AgentProperty::number("a", 1, std::nullopt)});
    std::atomic<int> delivered = 0;
    std::atomic<int> refused = 0;
    std::vector<std::thread> threads;
    constexpr int kThreads = 4;
    const int each = 500 * test::longFactor();
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < each; ++round) {
                try {
                    EXPECT_TRUE(station->announce(batch).empty());
                    ++delivered;
                } catch (const std::logic_error&) {
                    ++refused;
                }
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(counter->mostInside, 1);
    EXPECT_EQ(counter->heardOf, delivered);
    EXPECT_EQ(delivered + refused, kThreads * each);
    EXPECT_GT(delivered, 0);
}

}  // namespace
}  // namespace vigil
