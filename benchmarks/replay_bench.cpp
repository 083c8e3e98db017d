// When a condition would have fired, asked of the monitor's own module: a history's columns become batches of
// the condition's keys, and a replay shows them to the module. Beside it the replay of batches that are there
// already, and the scan of the columns that the chart makes. All must fire at the same moments before
// anything is timed.

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>

#include <benchmark/benchmark.h>

#include "benchmarks/Ratios.hpp"
#include "benchmarks/ReplayedMonitor.hpp"
#include "conditions/ConditionPredicate.hpp"
#include "host/desktop/ColumnScan.hpp"
#include "host/kit/MonitorModule.hpp"

namespace vigil::bench {
namespace {

constexpr int kRows = 1 << 15;
constexpr const char* kCondition = "windChill.unitValue < 10 OR windSpeed.unitValue > 25";
constexpr double kDemand = 2000;  // nanoseconds: 500,000 notifications a second

struct Rule {
    const char* name;
    ScanRule scan;
};
// Minutes of readings: with a wait of one each is judged, with one of sixty most are not.
const Rule kRules[] = {{"one", {1, false}}, {"sixty", {60, false}}, {"changes", {1, true}}};

const Columns& columns() {
    static const Columns made = [] {
        Columns columns({"windChill", "windSpeed"});
        for (int minute = 0; minute < kRows; ++minute) {
            const Date when(minute * 60.0);
            const double day = -std::cos(minute * 2 * 3.14159265 / 1440);
            const double chill = std::round((14 + 5 * day) * 10) / 10,
                         wind = std::round(std::fmod(minute * 7.3, 31.0) * 10) / 10;
            columns.append(when, *Readings::make({AgentProperty::number("windChill", chill, when),
                                                  AgentProperty::number("windSpeed", wind, when)}));
        }
        return columns;
    }();
    return made;
}

/// The rows of columns as batches of their own, one after another.
class Rows {
  public:
    explicit Rows(const Columns& columns) : m_columns(columns.columns()) {
        std::vector<std::string> keys;
        for (const Columns::Column& column : m_columns) {
            m_labels.push_back(std::make_shared<const AgentPropertyLabel>(
                AgentPropertyLabel{column.key, column.name, column.unit, kNumericType}));
            keys.push_back(column.key);
        }
        m_table = KeyTable::make(std::move(keys));
    }

    std::shared_ptr<const Readings> batch(std::size_t row) const {
        std::vector<AgentProperty> entries;
        entries.reserve(m_columns.size());
        for (std::size_t i = 0; i < m_columns.size(); ++i) {
            const Columns::Column& column = m_columns[i];
            if (!column.there[row]) continue;
            AgentProperty::Parts parts{.value = column.value[row], .unitValue = column.unitValue[row]};
            if (!std::isnan(column.time[row])) parts.time = Date(column.time[row]);
            entries.emplace_back(m_labels[i], std::move(parts));
        }
        return Readings::make(m_table, std::move(entries));
    }

  private:
    const std::vector<Columns::Column>& m_columns;
    std::vector<std::shared_ptr<const AgentPropertyLabel>> m_labels;
    std::shared_ptr<const KeyTable> m_table;
};

const std::vector<std::shared_ptr<const Readings>>& readyBatches() {
    static const auto made = [] {
        const Rows rows(columns());
        std::vector<std::shared_ptr<const Readings>> batches;
        for (std::size_t row = 0; row < columns().rows(); ++row)
            batches.push_back(rows.batch(row));
        return batches;
    }();
    return made;
}

using Batch = std::function<std::shared_ptr<const Readings>(std::size_t)>;

std::vector<double> replayed(const ScanRule& rule, const Batch& batch) {
    ReplayedMonitor monitor(kCondition, rule.retriggerMinutes, rule.onlyOnChange);
    for (std::size_t row = 0; row < columns().rows(); ++row)
        monitor.show(Date(columns().times()[row]), batch(row));
    return monitor.fires();
}

std::vector<double> fromColumns(const ScanRule& rule) {
    const Rows rows(columns());
    return replayed(rule, [&](std::size_t row) { return rows.batch(row); });
}

std::vector<double> fromBatches(const ScanRule& rule) {
    return replayed(rule, [](std::size_t row) { return readyBatches()[row]; });
}

std::vector<double> scanned(const ScanRule& rule) {
    static const auto condition = ConditionPredicate::predicateWithFormat(kCondition).value();
    return scan(columns(), condition->tree(), rule).fires;
}

void demandAgreement() {
    for (const Rule& rule : kRules) {
        const auto wanted = scanned(rule.scan);
        const bool same = fromColumns(rule.scan) == wanted && fromBatches(rule.scan) == wanted;
        std::printf("%-8s %zu fires in %d notifications\n", rule.name, wanted.size(), kRows);
        if (same && !wanted.empty()) continue;
        std::fprintf(stderr, "%s: the contestants disagree, nothing is timed\n", rule.name);
        std::exit(1);
    }
}

double threadSeconds() {
    std::timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

void time(const std::string& name, const ScanRule& rule, std::vector<double> (*ask)(const ScanRule&)) {
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
        for (auto _ : state) {
            const double before = threadSeconds();
            benchmark::DoNotOptimize(ask(rule));
            state.SetIterationTime(threadSeconds() - before);
        }
    })->UseManualTime();
}

void printTable(const Fastest& fastest) {
    std::fflush(stdout);
    std::printf("\nnanoseconds a notification (fastest repetition, time of the thread)\n");
    std::printf("%-9s%8s%10s%14s%14s%12s\n", "rule", "scan", "batches", "from columns", "ratio", "a second");
    for (const Rule& rule : kRules) {
        const auto of = [&](const char* what) { return fastest.of(std::string(rule.name) + what) / kRows; };
        const double made = of("/columns"), ready = of("/batches");
        if (made == 0 || ready == 0) continue;  // filtered out
        std::printf("%-9s%8.1f%10.0f%14.0f%14.2f%12.0f%s\n", rule.name, of("/scan"), ready, made,
                    made / ready, 1e9 / made, made > kDemand ? "  below 500,000" : "");
    }
}

}  // namespace
}  // namespace vigil::bench

int main(int argc, char** argv) {
    using namespace vigil::bench;
    const std::string program = argv[0];
    const auto slash = program.rfind('/');
    const auto loaded = vigil::loadMonitorModule(slash == std::string::npos ? "." : program.substr(0, slash));
    if (!loaded) {
        std::fprintf(stderr, "%s\n", loaded.error().message.c_str());
        return 1;
    }
    demandAgreement();
    for (const Rule& rule : kRules) {
        time(std::string(rule.name) + "/scan", rule.scan, scanned);
        time(std::string(rule.name) + "/batches", rule.scan, fromBatches);
        time(std::string(rule.name) + "/columns", rule.scan, fromColumns);
    }
    return runWithRatios(argc, argv, printTable);
}
