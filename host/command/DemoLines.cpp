#include "host/command/DemoLines.hpp"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

namespace vigil {
namespace {

constexpr int kBarWidth = 16;
constexpr const char* kBold = "\033[1;33m";
constexpr const char* kDim = "\033[2m";
constexpr const char* kPlain = "\033[0m";

std::string painted(const std::string& text, const char* colour, bool really) {
    return really ? colour + text + kPlain : text;
}

std::string verdict(const DemoStep& step, bool colour) {
    switch (step.outcome) {
        case CycleOutcome::Fired:
            return painted("FIRED", kBold, colour);
        case CycleOutcome::Missed:
            return "does not hold";
        case CycleOutcome::Waiting:
            break;
    }
    const std::string until =
        step.next ? fmt::format(" until {:02}:{:02}", step.next->hour, step.next->minute) : "";
    return painted("waiting" + until, kDim, colour);
}

}  // namespace

std::string demoBar(double value, double low, double high, double bound, int width) {
    const auto cellsBelow = [&](double of) {
        const double part = std::clamp((of - low) / (high - low), 0.0, 1.0);
        return static_cast<int>(std::lround(part * width));
    };
    const int filled = cellsBelow(value);
    const int mark = std::min(cellsBelow(bound), width - 1);
    std::string bar;
    for (int cell = 0; cell < width; ++cell) {
        if (cell == mark)
            bar += cell < filled ? "┿" : "│";
        else
            bar += cell < filled ? "━" : "·";
    }
    return bar;
}

std::string demoHeading() {
    return fmt::format("{:<6} {:<26} {:<28} {}\n", "time", "wind chill, below 10 °C?", "wind, above 25 km/h?",
                       "the monitor");
}

std::string demoLine(const DemoStep& step, bool colour) {
    return fmt::format("{:02}:{:02} {:5.1f} °C {} {:7.1f} km/h {}  {}\n", step.time.hour, step.time.minute,
                       step.windChill, demoBar(step.windChill, 0, 20, 10, kBarWidth), step.windSpeed,
                       demoBar(step.windSpeed, 0, 50, 25, kBarWidth), verdict(step, colour));
}

std::string demoScriptLine(const std::string& name, const ScriptResult& result, bool colour) {
    std::string text = result.lastLines;
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    text = text.substr(text.rfind('\n') + 1);
    const double took = result.ended.secondsSince(result.started);
    std::string end = result.outcome == ScriptResult::Succeeded
                          ? fmt::format("exit 0 after {:.0f} ms", took * 1000)
                          : result.sentence();
    return painted(fmt::format("      └ {} wrote: {}  ({})", name, text, end), kDim, colour) + "\n";
}

}  // namespace vigil
