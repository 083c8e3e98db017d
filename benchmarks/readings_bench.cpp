// What becomes of a packet of 40 readings: StationReadings::take, against the mere making of a batch of the
// same readings, which no way of taking them can undercut.

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "benchmarks/AllocationCount.hpp"
#include "benchmarks/ConditionWorkload.hpp"
#include "benchmarks/Ratios.hpp"
#include "host/readings/KnownReadings.hpp"
#include "host/readings/StationReadings.hpp"

namespace vigil::bench {
namespace {

enum class Telling { Both, Units };

// The readings of the workload as its sender tells them: both numbers, no unit.
Packet packetOfBoth(const Readings& batch) {
    Packet packet;
    for (const AgentProperty& reading : batch.entries())
        packet.readings.push_back({.key = reading.propertyName(),
                                   .name = {},
                                   .value = reading.value(),
                                   .unitValue = reading.unitValue(),
                                   .time = reading.time()});
    return packet;
}

// As a console sends them: the known readings with their imperial units and unknown ones without.
Packet packetOfUnits(SplitMix& random) {
    Packet packet;
    for (const KnownReading& known : knownReadings()) {
        if (packet.readings.size() == kProperties) break;
        if (known.kind != kNumericType) continue;
        const Unit unit = shownUnit(known.held, UnitSystem::Us);
        const Bounds bounds = known.bounds;
        const double value = bounds.least + random.unit() * (bounds.most - bounds.least);
        packet.readings.push_back({.key = std::string(known.key),
                                   .name = {},
                                   .value = convert(value, known.held, unit).value(),
                                   .unit = unit});
    }
    return packet;
}

std::vector<Packet> packets(Telling form) {
    std::vector<Packet> made;
    SplitMix random(40);
    for (const auto& batch : makeWorkload().batches)
        made.push_back(form == Telling::Both ? packetOfBoth(*batch) : packetOfUnits(random));
    return made;
}

// A station that gets a packet every 16 seconds.
struct Sender {
    explicit Sender(Telling form, std::vector<const char*> rolling) : sent(packets(form)) {
        StationReadingsSettings settings{.system = UnitSystem::Us};
        for (const char* text : rolling)
            settings.rolling.push_back(RollingChoice::parse(text).value());
        station = std::make_unique<StationReadings>(settings);
    }
    std::shared_ptr<const Readings> take() {
        now = now.plus(16);
        Packet& packet = sent[next++ % kFrames];
        packet.arrived = now;
        for (PacketReading& reading : packet.readings)
            if (reading.time) reading.time = now;
        return station->take(packet, now).batch;
    }

    std::vector<Packet> sent;
    std::unique_ptr<StationReadings> station;
    Date now{8e8};
    std::size_t next = 0;
};

void count(benchmark::State& state, long before) {
    state.counters["allocations"] =
        static_cast<double>(allocationsSoFar() - before) / static_cast<double>(state.iterations());
}

void timeTake(const std::string& name, Telling form, std::vector<const char*> rolling) {
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
        Sender sender(form, rolling);
        for (std::size_t i = 0; i < 2 * kFrames; ++i) {
            const auto batch = sender.take();
            if (!batch || batch->entries().size() < kProperties) std::abort();  // nothing may be left out
        }
        const long before = allocationsSoFar();
        for (auto _ : state)
            benchmark::DoNotOptimize(sender.take());
        count(state, before);
    });
}

void timeMake() {
    benchmark::RegisterBenchmark("make", [](benchmark::State& state) {
        const auto work = makeWorkload();
        std::size_t next = 0;
        const long before = allocationsSoFar();
        for (auto _ : state) {
            const auto& batch = work.batches[next++ % kFrames];
            benchmark::DoNotOptimize(Readings::make(batch->table(), batch->entries()));
        }
        count(state, before);
    });
}

const char* const kNames[] = {"take/both_numbers", "take/units_converted", "take/ten_rolling"};

void printTable(const Fastest& fastest) {
    std::fflush(stdout);
    const double make = fastest.of("make");
    std::printf("\nnanoseconds a packet of 40 readings (fastest repetition, time of the thread)\n");
    std::printf("%-24s%10s%14s%18s\n", "", "ns", "take / make", "demand");
    std::printf("%-24s%10.0f\n", "make", make);
    for (const char* name : kNames)
        if (const double taken = fastest.of(name); taken > 0 && make > 0)
            std::printf("%-24s%10.0f%14.1f%18s\n", name, taken, taken / make, "10000 ns or less");
}

}  // namespace
}  // namespace vigil::bench

int main(int argc, char** argv) {
    using namespace vigil::bench;
    timeMake();
    timeTake(kNames[0], Telling::Both, {});
    timeTake(kNames[1], Telling::Units, {});
    timeTake(kNames[2], Telling::Units,
             {"windSpeed mean 10", "windSpeed max 10", "windGust max 60", "outsideTemp min 1440",
              "outsideTemp mean 60", "barometer mean 180", "windDir mean 10", "windSpeed age",
              "outsideTemp below 32", "outsideHumidity above 90"});
    return runWithRatios(argc, argv, printTable);
}
