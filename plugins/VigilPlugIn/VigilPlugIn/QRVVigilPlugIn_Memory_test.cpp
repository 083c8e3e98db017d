// What a cycle costs in memory: nothing once it has run, whatever the batch holds, and with the log a little
// a batch, whatever it holds.

#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "host_contract/QRVKit.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

// Counts what this thread allocates.
namespace {
thread_local long t_allocations = 0;
}

void* operator new(std::size_t size) {
    ++t_allocations;
    if (void* memory = std::malloc(size ? size : 1)) return memory;
    throw std::bad_alloc();
}
// A sort's buffer comes this way and goes back by the plain delete, so both have to be of one kind.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    ++t_allocations;
    return std::malloc(size ? size : 1);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace vigil {
namespace {

/// Keeps the last line alone, in memory that it has already.
class LastLineLog : public RecordingLog {
  public:
    explicit LastLineLog(bool takes) : m_takes(takes) { m_last.reserve(100'000); }
    bool takesLevel(int) const override { return m_takes; }
    void logLevel(int, std::string_view message) override { m_last.assign(message); }
    const std::string& last() const { return m_last; }

  private:
    bool m_takes;
    std::string m_last;
};

class QuietWorld : public FakeWorld {
  public:
    explicit QuietWorld(bool takesLog) : m_log(takesLog) {}
    LastLineLog& log() override { return m_log; }

  private:
    LastLineLog m_log;
};

enum class Inputs { All, OnlyChanged };
enum class Log { Off, Taken };

struct Cycles {
    Cycles(Inputs inputs, Log log) : world(log == Log::Taken) {
        monitor->setTriggerOnlyOnChange(inputs == Inputs::OnlyChanged);
        monitor->setRetriggerInterval(std::nullopt);
        monitor->setEvaluating(true);
        monitor->start();
    }

    // Ten notifications of so many readings, in which the monitor fires and misses by turns, each with a
    // batch that nobody has printed; made beforehand.
    std::vector<Notification> notifications(int readings) const {
        std::vector<std::string> keys{"windChill", "windSpeed"};
        for (int i = 2; i < readings; ++i)
            keys.push_back("property" + std::to_string(i));
        const auto table = KeyTable::make(keys);
        std::vector<Notification> all;
        for (int frame = 0; frame < 10; ++frame) {
            std::vector<AgentProperty> entries;
            for (const std::string& key : keys)
                entries.push_back(AgentProperty::number(key, frame % 2 == 0 ? 5.25 : 15.25, Date(frame)));
            all.push_back({kAppRealTimeDataNotification,
                           agent,
                           {{kDataKey, Readings::make(table, std::move(entries))}}});
        }
        return all;
    }

    // Allocations during the cycles over the notifications; nothing may have been thrown.
    long count(const std::vector<Notification>& all) {
        const long before = t_allocations;
        for (const Notification& one : all)
            EXPECT_TRUE(world.notificationCenter().post(one).empty());
        return t_allocations - before;
    }

    QuietWorld world;
    std::shared_ptr<FakeAgent> agent = std::make_shared<FakeAgent>(world);
    std::shared_ptr<QRVVigilPlugIn> monitor = makePlugIn<QRVVigilPlugIn>(agent, nullptr);
};

class CycleMemory : public testing::TestWithParam<Inputs> {};

TEST_P(CycleMemory, WithTheLogOffACycleAllocatesNothingOnceItHasRun) {
    Cycles cycles(GetParam(), Log::Off);
    const auto all = cycles.notifications(40);
    EXPECT_GT(cycles.count(all), 0) << "the first round binds the condition, so the counter counts";
    cycles.world.advance(1);
    EXPECT_EQ(cycles.count(all), 0);
    EXPECT_EQ(cycles.monitor->lastEvaluationDictionary()->size(), 40U);
}

TEST_P(CycleMemory, WithTheLogTakenACycleAllocatesTheSameForAnyNumberOfReadings) {
    Cycles cycles(GetParam(), Log::Taken);
    cycles.count(cycles.notifications(400));  // the longest line
    for (const int readings : {40, 400}) {
        const auto warm = cycles.notifications(readings);
        cycles.count(warm);
        const auto all = cycles.notifications(readings);
        // The condition is bound to the new table once; each batch keeps its printed text and where it ends.
        const long once = 20;
        const long forPrinted = 2 * static_cast<long>(all.size());
        EXPECT_LE(cycles.count(all), once + forPrinted) << readings << " readings";
        EXPECT_EQ(cycles.world.log().last().find("property" + std::to_string(readings - 1) + " = 15.25") !=
                      std::string::npos,
                  true);
        EXPECT_EQ(cycles.count(all), 0) << "what has been printed is not printed again";
    }
}

INSTANTIATE_TEST_SUITE_P(Inputs, CycleMemory, testing::Values(Inputs::All, Inputs::OnlyChanged),
                         [](const auto& one) {
                             return std::string(one.param == Inputs::All ? "All" : "OnlyChanged");
                         });

}  // namespace
}  // namespace vigil
