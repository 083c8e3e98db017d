// A monitor's whole cycle over 40 readings, with the condition of two comparisons and no rows: the module in
// a live world against the monitor that a decent programmer writes. Both must agree on every frame before
// anything is timed.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#include "benchmarks/AllocationCount.hpp"
#include "benchmarks/BenchStation.hpp"
#include "benchmarks/DecentMonitor.hpp"
#include "benchmarks/MemoryLog.hpp"
#include "benchmarks/Ratios.hpp"
#include "host_contract/QRVKit.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"

namespace vigil::bench {
namespace {

const Workload& workload() {
    static const Workload work = makeWorkload();
    return work;
}

class CountingObserver final : public CycleObserver {
  public:
    void cycleEnded(const Object&, const CycleReport& report) override {
        benchmark::DoNotOptimize(report.judged.bySlot);
    }
};

// The module's monitor and all that it needs around it.
struct Module {
    Module(bool takesLog, bool onlyOnChange) : log(takesLog) {
        monitor = makePlugIn<QRVVigilPlugIn>(station, nullptr);
        monitor->setRetriggerInterval(std::nullopt);
        monitor->setTriggerOnlyOnChange(onlyOnChange);
        monitor->setEvaluating(true);
        monitor->start();
    }

    Notification notification(std::shared_ptr<const Readings> batch) const {
        return {kAppRealTimeDataNotification, station, {{kDataKey, std::move(batch)}}};
    }
    // As a host does that keeps what was judged.
    void observe() { monitor->setCycleObserver(std::make_shared<CountingObserver>()); }
    bool fires(const Notification& notification) {
        const auto before = monitor->retriggerDate();
        monitor->dataChanged(notification);
        return monitor->retriggerDate() != before;
    }

    MemoryLog log;
    NoInterfaceFiles interfaceFiles;
    LiveWorld world{log, interfaceFiles, ""};
    std::shared_ptr<BenchStation> station = std::make_shared<BenchStation>(world);
    std::shared_ptr<QRVVigilPlugIn> monitor;
};

struct Decent {
    Decent(bool takesLog, bool onlyOnChange) : log(takesLog), monitor(log, onlyOnChange) {}

    MemoryLog log;
    DecentMonitor monitor;
    std::vector<std::vector<PlainReading>> frames = plainFrames(workload());
};

// --- agreement ---

// What stands between the braces, sorted: a map has an order of its own.
std::vector<std::string> entriesOf(const std::string& line) {
    std::vector<std::string> entries;
    const std::size_t end = line.find('}');
    for (std::size_t at = line.find('{') + 1; at < end;) {
        const std::size_t next = std::min(line.find(", ", at), end);
        entries.push_back(line.substr(at, next - at));
        at = next + 2;
    }
    std::sort(entries.begin(), entries.end());
    return entries;
}

bool sameSnapshot(const Module& module, const Decent& decent) {
    const auto& last = decent.monitor.snapshot();
    const auto snapshot = module.monitor->lastEvaluationDictionary();
    if (!snapshot || snapshot->size() != last.size()) return false;
    return std::all_of(last.begin(), last.end(), [&](const auto& entry) {
        const AgentProperty* reading = snapshot->objectForKey(entry.first);
        return reading && reading->value() == entry.second.value && reading->time() == entry.second.time &&
               reading->stringValue() == entry.second.text;
    });
}

// How many frames fired, or the end of the program where the two differ in anything.
int agreedFires(bool onlyOnChange) {
    Module module(true, onlyOnChange);
    Decent decent(true, onlyOnChange);
    int fires = 0;
    std::size_t bytes = 0;
    for (std::size_t frame = 0; frame < kFrames; ++frame) {
        const bool fired = module.fires(module.notification(workload().batches[frame]));
        const bool same = decent.monitor.cycle(decent.frames[frame]) == fired &&
                          entriesOf(module.log.last()) == entriesOf(decent.log.last()) &&
                          module.log.last().size() == decent.log.last().size() &&
                          sameSnapshot(module, decent);
        if (!same) {
            std::fprintf(stderr, "frame %zu: the contestants disagree, nothing is timed\n", frame);
            std::exit(1);
        }
        fires += fired;
        bytes += module.log.last().size();
    }
    std::printf("%-13s fires in %3d of %zu frames, %zu bytes of log a cycle\n",
                onlyOnChange ? "only changed" : "all readings", fires, kFrames, bytes / kFrames);
    return fires;
}

// --- timing ---

// The time of this thread alone, without what others did on its processor meanwhile.
double threadSeconds() {
    std::timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// `prepare` comes before each round of all frames and is neither timed nor counted.
void time(const std::string& name, const std::function<void()>& prepare,
          const std::function<void(std::size_t)>& cycle) {
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
        prepare();
        for (std::size_t frame = 0; frame < kFrames; ++frame)
            cycle(frame);  // so that memory kept from cycle to cycle is there
        long allocations = 0;
        for (auto _ : state) {
            prepare();
            const long allocationsBefore = allocationsSoFar();
            const double before = threadSeconds();
            for (std::size_t frame = 0; frame < kFrames; ++frame)
                cycle(frame);
            state.SetIterationTime(threadSeconds() - before);
            allocations += allocationsSoFar() - allocationsBefore;
        }
        state.counters["allocations"] =
            static_cast<double>(allocations) / static_cast<double>(state.iterations()) / kFrames;
    })->UseManualTime();
}

void timeDecent(const std::string& name, bool takesLog, bool onlyOnChange) {
    const auto decent = std::make_shared<Decent>(takesLog, onlyOnChange);
    time(
        name + "/decent", [] {},
        [decent](std::size_t frame) {
            benchmark::DoNotOptimize(decent->monitor.cycle(decent->frames[frame]));
        });
}

// A batch keeps its printed text, so where lines are built every round gets batches that nobody has printed.
std::vector<Notification> notifications(const Module& module, bool fresh) {
    std::vector<Notification> all;
    for (const auto& batch : workload().batches)
        all.push_back(module.notification(fresh ? Readings::make(batch->table(), batch->entries()) : batch));
    return all;
}

void timeModule(const std::string& name, bool takesLog, bool onlyOnChange) {
    const auto module = std::make_shared<Module>(takesLog, onlyOnChange);
    const auto frames = std::make_shared<std::vector<Notification>>(notifications(*module, false));
    const auto prepare = [=] {
        if (takesLog) *frames = notifications(*module, true);
    };
    time(name + "/module", prepare,
         [module, frames](std::size_t frame) { module->monitor->dataChanged((*frames)[frame]); });
    time(name + "/posted", prepare, [module, frames](std::size_t frame) {
        if (!module->world.notificationCenter().post((*frames)[frame]).empty()) std::abort();
    });
    const auto observed = std::make_shared<Module>(takesLog, onlyOnChange);
    observed->observe();
    time(name + "/observed", prepare,
         [observed, frames](std::size_t frame) { observed->monitor->dataChanged((*frames)[frame]); });
}

const std::pair<const char*, bool> kInputs[] = {{"all", false}, {"changed", true}};
const std::pair<const char*, bool> kLogs[] = {{"off", false}, {"taken", true}};

void printTable(const Fastest& fastest) {
    std::fflush(stdout);
    std::printf("\nnanoseconds a cycle (fastest repetition, time of the thread)\n");
    std::printf("%-9s%-7s%8s%8s%8s%10s%15s%14s\n", "readings", "log", "decent", "module", "posted",
                "observed", "module/decent", "demand");
    for (const auto& [input, onlyOnChange] : kInputs)
        for (const auto& [log, takesLog] : kLogs) {
            const std::string name = std::string(input) + "/log_" + log;
            const double decent = fastest.of(name + "/decent") / kFrames;
            const double module = fastest.of(name + "/module") / kFrames;
            if (decent == 0 || module == 0) continue;  // filtered out
            std::printf("%-9s%-7s%8.0f%8.0f%8.0f%10.0f%15.3f%14s\n", input, log, decent, module,
                        fastest.of(name + "/posted") / kFrames, fastest.of(name + "/observed") / kFrames,
                        module / decent, takesLog ? "0.5 or less" : "0.1 or less");
        }
}

}  // namespace
}  // namespace vigil::bench

int main(int argc, char** argv) {
    using namespace vigil::bench;
    for (const auto& [input, onlyOnChange] : kInputs)
        if (agreedFires(onlyOnChange) == 0) return 1;
    for (const auto& [input, onlyOnChange] : kInputs)
        for (const auto& [log, takesLog] : kLogs) {
            const std::string name = std::string(input) + "/log_" + log;
            timeDecent(name, takesLog, onlyOnChange);
            timeModule(name, takesLog, onlyOnChange);
        }
    return runWithRatios(argc, argv, printTable);
}
