#include "benchmarks/Ratios.hpp"

#include <latch>
#include <thread>
#include <utility>

#include <benchmark/benchmark.h>

namespace vigil::bench {
namespace {

// The time of the thread alone: the program's own measure where it takes one, else the processor's.
double ownTime(const benchmark::BenchmarkReporter::Run& run) {
    const bool measuredByHand = run.run_name.time_type == "manual_time";
    return measuredByHand ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
}

class CollectingReporter : public benchmark::ConsoleReporter {
  public:
    explicit CollectingReporter(Fastest& fastest) : m_fastest(fastest) {}

    // Shows one line a benchmark: its median, or the single run.
    void ReportRuns(const std::vector<Run>& runs) override {
        std::vector<Run> shown;
        for (const Run& run : runs) {
            const bool measured = run.run_type == Run::RT_Iteration && !run.error_occurred;
            if (measured) m_fastest.add(run.run_name.function_name, ownTime(run));
            if (run.repetitions <= 1 || run.aggregate_name == "median") shown.push_back(run);
        }
        if (!shown.empty()) ConsoleReporter::ReportRuns(shown);
    }

  private:
    Fastest& m_fastest;
};

}  // namespace

double Fastest::of(const std::string& name) const {
    double least = 0;
    for (const Entry& entry : m_entries)
        if (entry.name == name && (least == 0 || entry.nanoseconds < least)) least = entry.nanoseconds;
    return least;
}

int runWithRatios(int argc, char** argv, const std::function<void(const Fastest&)>& table) {
    std::string repetitions = "--benchmark_repetitions=25";
    std::string interleaving = "--benchmark_enable_random_interleaving=true";
    std::string minTime = "--benchmark_min_time=0.01";
    std::vector<char*> arguments{argv[0], repetitions.data(), interleaving.data(), minTime.data()};
    arguments.insert(arguments.end(), argv + 1, argv + argc);  // the later of two settings counts
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;

    std::latch done(1);
    std::thread second([&] { done.wait(); });
    Fastest fastest;
    CollectingReporter reporter(fastest);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    done.count_down();
    second.join();
    table(fastest);
    return 0;
}

}  // namespace vigil::bench
