#include <QApplication>
#include <QImage>
#include <cmath>

#include <benchmark/benchmark.h>

#include "host/desktop/Chart.hpp"
#include "host/desktop/Theme.hpp"

// What a hand at a threshold waits for: a year of minutes judged and drawn anew.

namespace vigil {
namespace {

constexpr int kYear = 525'600;

const Columns& year() {
    static const Columns columns = [] {
        Columns made({"windChill", "windSpeed"});
        for (int minute = 0; minute < kYear; ++minute) {
            const Date when(minute * 60.0);
            const double season = -std::cos(minute * 2 * 3.14159265 / kYear),
                         day = -std::cos(minute * 2 * 3.14159265 / 1440);
            made.append(when, *Readings::make(
                                  {AgentProperty::number("windChill", 10 + 12 * season + 5 * day, when),
                                   AgentProperty::number("windSpeed", std::fmod(minute * 7.3, 31.0), when)}));
        }
        return made;
    }();
    return columns;
}

std::shared_ptr<ConditionPredicate> condition() {
    return ConditionPredicate::predicateWithFormat("windChill.unitValue < 10 OR windSpeed.unitValue > 25")
        .value();
}

void scanYear(benchmark::State& state) {
    const ScanRule rule{60, state.range(0) != 0};
    const auto judged = condition();
    for (auto _ : state)
        benchmark::DoNotOptimize(scan(year(), judged->tree(), rule));
    state.SetItemsProcessed(state.iterations() * kYear);
}
BENCHMARK(scanYear)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void scanAndDrawYear(benchmark::State& state) {
    Chart chart;
    chart.resize(1000, 300);
    chart.setColumns(std::make_shared<Columns>(year()));
    chart.setSpan(kYear * 60.0, Date(kYear * 60.0));
    QImage image(chart.size(), QImage::Format_ARGB32_Premultiplied);
    double minutes = 60;
    for (auto _ : state) {
        minutes = minutes == 60 ? 61 : 60;
        chart.setCondition(condition(), {minutes, false});
        chart.render(&image);
    }
}
BENCHMARK(scanAndDrawYear)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vigil

int main(int count, char** words) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(count, words);
    vigil::applyTheme(application, vigil::Appearance::Light);
    benchmark::Initialize(&count, words);
    benchmark::RunSpecifiedBenchmarks();
}
