#include <cmath>
#include <ctime>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "host/site/HistoryReader.hpp"
#include "host/site/HistoryWriter.hpp"

// What it costs to keep a notification: processor time of the whole process (the caller's push, the packing,
// the database), and bytes of the file.

namespace vigil {
namespace {

constexpr int kReadings = 40;
constexpr int kTexts = 3;
const Date kStart(794826000);

double processSeconds() {
    std::timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// A site of its own below the system's folder for such files, removed at the end.
class Folder {
  public:
    Folder() : m_path(std::filesystem::temp_directory_path() / "vigil-history-bench") { clear(); }
    ~Folder() { clear(); }
    std::string site() const { return (m_path / "home.vigilsite").string(); }

  private:
    void clear() {
        std::filesystem::remove_all(m_path);
        std::filesystem::create_directories(m_path);
    }
    const std::filesystem::path m_path;
};

/// Batches as a console sends them: tenths, some converted units, a few texts; labels and table are shared.
class Console {
  public:
    explicit Console(std::string name) {
        std::vector<std::string> keys;
        for (int i = 0; i < kReadings; ++i) {
            keys.push_back(name + std::to_string(i));
            m_labels.push_back(std::make_shared<const AgentPropertyLabel>(AgentPropertyLabel{
                keys.back(), "Reading", i % 10 == 0 ? "km/h" : "°C", i < kTexts ? kTextType : kNumericType}));
        }
        m_table = KeyTable::make(std::move(keys));
    }

    std::shared_ptr<const Readings> batch(int number, Date time) const {
        static constexpr const char* kWinds[] = {"N", "NNE", "NE", "ENE"};
        std::vector<AgentProperty> entries;
        entries.reserve(kReadings);
        for (int i = 0; i < kReadings; ++i) {
            AgentProperty::Parts parts{.value = std::round((i * 7.3 + number % 97) * 10) / 10, .time = time};
            parts.unitValue = parts.value;
            if (i % 10 == 0) parts.value = parts.unitValue / 3.6;
            if (i < kTexts) parts = {.stringValue = kWinds[number / 7 % 4], .time = time};
            entries.emplace_back(m_labels[static_cast<std::size_t>(i)], std::move(parts));
        }
        return Readings::make(m_table, std::move(entries));
    }

  private:
    std::vector<std::shared_ptr<const AgentPropertyLabel>> m_labels;
    std::shared_ptr<const KeyTable> m_table;
};

void keep(benchmark::State& state) {
    constexpr int kBatches = 8192;
    const auto stations = static_cast<int>(state.range(0));
    const Folder folder;
    auto writer = HistoryWriter::open(folder.site());
    if (!writer) return state.SkipWithError(writer.error().message.c_str());
    std::vector<Console> consoles;
    for (int i = 0; i < stations; ++i)
        consoles.emplace_back("key");
    std::vector<std::shared_ptr<const Readings>> batches;
    for (int i = 0; i < kBatches; ++i)
        batches.push_back(
            consoles[static_cast<std::size_t>(i % stations)].batch(i, kStart.plus(i / stations)));
    double told = 0, spent = 0;
    std::uint64_t count = 0;
    for (auto _ : state) {
        const double begin = processSeconds();
        for (int i = 0; i < kBatches; ++i, ++told)
            writer.value()->append(1 + i % stations, std::nullopt, kStart.plus(told / stations),
                                   batches[static_cast<std::size_t>(i)]);
        writer.value()->flush();
        spent += processSeconds() - begin;
        count += kBatches;
    }
    if (writer.value()->counts().written != count) state.SkipWithError("not everything was written");
    writer.value().reset();
    state.counters["us_a_row"] = spent / static_cast<double>(count) * 1e6;
    state.counters["bytes_a_row"] =
        static_cast<double>(HistoryReader::open(folder.site()).value()->bytes()) / static_cast<double>(count);
}

void readBack(benchmark::State& state) {
    constexpr int kBatches = 8192;
    const Folder folder;
    const Console console("key");
    {
        auto writer = HistoryWriter::open(folder.site());
        if (!writer) return state.SkipWithError(writer.error().message.c_str());
        for (int i = 0; i < kBatches; ++i)
            writer.value()->append(1, std::nullopt, kStart.plus(i), console.batch(i, kStart.plus(i)));
    }
    auto reader = HistoryReader::open(folder.site());
    std::size_t rows = 0;
    for (auto _ : state) {
        auto source = reader.value()->source(1).value();
        while (source->next().value())
            ++rows;
    }
    if (rows % kBatches != 0) state.SkipWithError("rows are missing");
    state.counters["us_a_row"] = benchmark::Counter(
        static_cast<double>(rows) / 1e6, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

BENCHMARK(keep)->Arg(1)->Arg(100)->Unit(benchmark::kMillisecond);
BENCHMARK(readBack)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vigil

BENCHMARK_MAIN();
