// What a chart over a year waits for: a year of minutes of one station, 40 readings each, is read from its
// history into columns. Beside it the same with every reading unpacked and every text kept. Both must find
// the same before anything is timed.

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>

#include <benchmark/benchmark.h>
#include <malloc.h>

#include "benchmarks/Ratios.hpp"
#include "host/desktop/ChartHistory.hpp"
#include "host/site/HistoryReader.hpp"
#include "host/site/HistoryWriter.hpp"

namespace vigil::bench {
namespace {

constexpr int kMinutes = 525'600;
constexpr int kReadings = 40;
constexpr int kTexts = 3;
const Date kStart(794826000);

/// A site of its own below the system's folder for such files, removed at the end.
class Year {
  public:
    Year() : m_path(std::filesystem::temp_directory_path() / "vigil-chart-bench") {
        clear();
        std::vector<std::shared_ptr<const AgentPropertyLabel>> labels;
        std::vector<std::string> keys;
        for (int i = 0; i < kReadings; ++i) {
            keys.push_back(key(i));
            labels.push_back(std::make_shared<const AgentPropertyLabel>(
                AgentPropertyLabel{keys.back(), "Reading", "°C", i < kTexts ? kTextType : kNumericType}));
        }
        const auto table = KeyTable::make(std::move(keys));
        const auto writer = HistoryWriter::open(site(), {.retentionDays = 4000});
        if (!writer) std::abort();
        for (int minute = 0; minute < kMinutes; ++minute) {
            const Date when = kStart.plus(minute * 60.0);
            static constexpr const char* kWinds[] = {"N", "NNE", "NE", "ENE"};
            std::vector<AgentProperty> entries;
            for (int i = 0; i < kReadings; ++i) {
                const double value = std::round(200 * std::sin(minute / 230.0 + i) + minute % 7) / 10;
                AgentProperty::Parts parts{.value = value, .unitValue = value, .time = when};
                if (i < kTexts) parts = {.stringValue = kWinds[minute / 7 % 4], .time = when};
                entries.emplace_back(labels[static_cast<std::size_t>(i)], std::move(parts));
            }
            writer.value()->append(1, std::nullopt, when, Readings::make(table, std::move(entries)));
            if (minute % 4096 == 0) writer.value()->flush();
        }
    }
    ~Year() { clear(); }
    std::string site() const { return (m_path / "home.vigilsite").string(); }
    /// The first ones are texts.
    static std::string key(int i) { return "key" + std::to_string(i); }

  private:
    void clear() {
        std::filesystem::remove_all(m_path);
        std::filesystem::create_directories(m_path);
    }
    const std::filesystem::path m_path;
};

std::vector<std::string> keys(int count) {
    std::vector<std::string> some;
    for (int i = 0; i < count; ++i)
        some.push_back(Year::key(kTexts + i * 3));
    return some;
}

Columns asTheChart(const Year& year, int count) {
    ChartQuery query{.siteFile = year.site(),
                     .station = 1,
                     .keys = keys(count),
                     .since = kStart,
                     .now = kStart.plus(kMinutes * 60.0)};
    ChartRows rows = readChart(query, [](double) { return true; });
    if (!rows.trouble.empty()) std::abort();
    return std::move(rows.columns);
}

Columns wholeRows(const Year& year, int count) {
    Columns columns(keys(count), keys(count));
    const auto reader = HistoryReader::open(year.site());
    const auto source = reader.value()->source(1, {.since = kStart});
    for (auto next = source.value()->next(); next && next.value(); next = source.value()->next())
        columns.append(next.value()->started, *next.value()->readings);
    return columns;
}

bool same(const Columns& a, const Columns& b) {
    if (a.times() != b.times() || a.rows() != kMinutes) return false;
    for (std::size_t i = 0; i < a.columns().size(); ++i) {
        const auto &x = a.columns()[i], &y = b.columns()[i];
        if (x.value != y.value || x.unitValue != y.unitValue || x.time != y.time || x.there != y.there)
            return false;
    }
    return true;
}

double threadSeconds() {
    std::timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// MiB of `name` in /proc/self/status.
double memory(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(name)) return std::stod(line.substr(name.size() + 1)) / 1024;
    return 0;
}

void time(const std::string& name, const Year& year, int count, Columns (*read)(const Year&, int)) {
    benchmark::RegisterBenchmark(name.c_str(),
                                 [=, &year](benchmark::State& state) {
                                     for (auto _ : state) {
                                         malloc_trim(0);
                                         const double before = threadSeconds(),
                                                      memoryBefore = memory("RssAnon:");
                                         const Columns columns = read(year, count);
                                         state.SetIterationTime(threadSeconds() - before);
                                         state.counters["MiB"] = memory("RssAnon:") - memoryBefore;
                                         benchmark::DoNotOptimize(columns.rows());
                                     }
                                 })
        ->UseManualTime()
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
}

void printTable(const Fastest& fastest) {
    std::fflush(stdout);
    std::printf("\nmilliseconds for a year (fastest repetition, time of the thread)\n");
    std::printf("%-6s%12s%12s%8s\n", "keys", "whole rows", "the chart", "ratio");
    for (const int count : {2, 10}) {
        const double whole = fastest.of("whole/" + std::to_string(count)),
                     chart = fastest.of("chart/" + std::to_string(count));
        if (whole > 0 && chart > 0)
            std::printf("%-6d%12.0f%12.0f%8.2f\n", count, whole, chart, chart / whole);
    }
}

}  // namespace
}  // namespace vigil::bench

int main(int argc, char** argv) {
    using namespace vigil::bench;
    const Year year;
    for (const int count : {2, 10}) {
        if (!same(asTheChart(year, count), wholeRows(year, count))) {
            std::fprintf(stderr, "%d keys: the two disagree, nothing is timed\n", count);
            return 1;
        }
        time("chart/" + std::to_string(count), year, count, asTheChart);
        time("whole/" + std::to_string(count), year, count, wholeRows);
    }
    std::vector<char*> words(argv, argv + 1);
    std::string few = "--benchmark_repetitions=5";
    words.push_back(few.data());
    words.insert(words.end(), argv + 1, argv + argc);
    return runWithRatios(static_cast<int>(words.size()), words.data(), printTable);
}
