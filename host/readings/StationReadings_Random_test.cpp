#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <set>

#include <gtest/gtest.h>

#include "host/readings/PacketSamples.hpp"
#include "host/readings/StationReadings.hpp"

namespace vigil {
namespace {

using Kind = Taken::Kind;

/// Packets as no sender makes them: whatever the types allow, from an alphabet small enough that things meet.
class RandomPackets {
  public:
    Packet next() {
        if (below(5) == 0) {  // the same again
            m_now += 0.1;
            m_last.arrived = Date(m_now);
            return m_last;
        }
        return m_last = fresh();
    }
    Date now() const { return Date(m_now); }
    int below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(m_random); }

  private:
    Packet fresh() {
        m_now += pick({0.0, 0.1, 1.0, 16.0, 700.0, 5000.0, -0.5, -90.0});
        Packet packet{.sensor = pick<std::string>({"", "", "vane", "shed"}), .arrived = Date(m_now)};
        if (below(3) == 0) packet.time = Date(m_now + anyShift());
        packet.retained = below(12) == 0;
        const int count = below(8);
        for (int i = 0; i < count; ++i)
            packet.readings.push_back(reading());
        return packet;
    }
    template <class T>
    T pick(std::initializer_list<T> among) {
        return *(among.begin() + below(static_cast<int>(among.size())));
    }
    double anyShift() {
        return pick({0.0, -1.0, -20.0, -3600.0, 3600.0, 4000.0, 1e300, -1e300,
                     std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()});
    }
    double anyNumber() {
        return pick({0.0, 1.0, -5.5, 30.0, 100.0, 999.0, -9999.0, 1e308, -1e308,
                     std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()});
    }
    PacketReading reading() {
        PacketReading made;
        made.key = pick<std::string>({"outsideTemp", "windSpeed", "windDir", "outsideHumidity", "windChill",
                                      "sky", "a b", "a.b", "", "AND", "windSpeedMean10", "\xFF"});
        made.type = pick({kNumericType, kNumericType, kNumericType, kTextType, kDateType});
        made.missing = below(10) == 0;
        made.value = anyNumber();
        made.unit = static_cast<Unit>(below(static_cast<int>(Unit::InchOfMercuryPerThreeHours) + 1));
        if (below(2) == 0) made.unit = Unit::None;
        made.text = pick<std::string>({"", "12.5", "NA", "Rain", "\xFF"});
        made.unitText = pick<std::string>({"", "", "mph", "cb"});
        if (below(6) == 0) made.unitValue = anyNumber();
        if (below(6) == 0) made.time = Date(m_now + anyShift());
        return made;
    }

    std::mt19937 m_random{424242};
    double m_now = 8e8;
    Packet m_last;
};

TEST(StationRandom, whateverIsSentABatchHoldsReadingsThatCanBeJudged) {
    RandomPackets packets;
    StationReadingsSettings settings{.system = UnitSystem::Us};
    for (const char* text : {"windSpeed mean 10", "windSpeed age", "outsideTemp below 0", "windDir max 1"})
        settings.rolling.push_back(RollingChoice::parse(text).value());
    StationReadings station(settings);
    std::uint64_t news = 0;
    Date latest = packets.now();  // that the host's clock has shown
    for (int i = 0; i < 20000; ++i) {
        const Packet packet = packets.next();
        latest = std::max(latest, packets.now());
        const Taken taken = station.take(packet, packets.now());
        ASSERT_EQ(taken.batch != nullptr, taken.kind == Kind::News);
        const auto current = station.current();
        if (taken.batch) {
            ++news;
            ASSERT_FALSE(taken.batch->entries().empty());
            ASSERT_FALSE(taken.batch->hasDuplicates());
            ASSERT_EQ(taken.batch->table(), current->table());
        }
        for (const auto& batch : {taken.batch, current, station.tick(packets.now())}) {
            if (!batch) continue;
            for (const AgentProperty& reading : batch->entries()) {
                ASSERT_TRUE(std::isfinite(reading.value()) && std::isfinite(reading.unitValue()))
                    << reading.description();
                const auto time = reading.time();
                ASSERT_TRUE(!time || time->secondsSince(latest) <= StationReadings::kFutureSeconds);
            }
        }
    }
    const StationReadingsCounts& counts = station.counts();
    EXPECT_EQ(counts.packets, news + counts.repeats + counts.late + counts.retained + counts.empty);
    const std::pair<const char*, std::uint64_t> seen[] = {
        {"news", news},
        {"repeats", counts.repeats},
        {"late", counts.late},
        {"retained", counts.retained},
        {"empty", counts.empty},
        {"missing", counts.missing},
        {"implausible", counts.implausible},
        {"unreadable", counts.unreadable},
        {"wrong units", counts.wrongUnit},
        {"wrong times", counts.wrongTimes},
        {"jumps", counts.jumps},
    };
    for (const auto& [what, count] : seen)
        EXPECT_GT(count, 20u) << what << ": the test is not what it is meant to be";
}

TEST(StationRandom, aWholePacketBringsNothingThatItDoesNotHold) {
    RandomPackets packets;
    StationReadings station({.derive = false});
    for (int i = 0; i < 5000; ++i) {
        Packet packet = packets.next();
        const Taken taken = station.take(packet, packets.now());
        if (!taken.batch || !packet.sensor.empty()) continue;
        std::set<std::string> sent;
        for (const PacketReading& reading : packet.readings)
            sent.insert(reading.key);
        ASSERT_LE(taken.batch->entries().size(), sent.size());
        for (const char* key : {"outsideTemp", "windSpeed", "sky"})
            ASSERT_TRUE(!taken.batch->objectForKey(key) || sent.contains(key)) << key;
    }
}

}  // namespace
}  // namespace vigil
