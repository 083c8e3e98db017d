#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "host/command/PlotDrawing.hpp"
#include "host/command/Svg.hpp"

// What stands around the lines: heading, legend, the monitor's lane, thresholds.

namespace vigil {
namespace {

constexpr const char* kHeldStyle = "fill=\"#f4b400\" fill-opacity=\"0.22\"";
constexpr const char* kUnwatchedStyle = "fill=\"#9a9a94\" fill-opacity=\"0.22\"";
constexpr const char* kFireColour = "#c5221f";
constexpr double kLaneHeight = 22;
/// About the width of a letter of 12 pixels' type.
constexpr double kLetter = 6.6;
constexpr std::size_t kLongestTitle = 70;
constexpr std::size_t kLongestName = 40;
constexpr std::size_t kLongestCondition = 115;
/// Fires closer than so many pixels are one mark.
constexpr double kNearestFires = 2;
/// Marks up to this number tell their time when one points at them.
constexpr std::size_t kMostTold = 200;

std::string triangle(double x, double y) {
    return fmt::format("<path d=\"M{:.1f} {:.1f}l-5 -9h10z\" fill=\"{}\"/>\n", x, y, kFireColour);
}

}  // namespace

void PlotDrawing::heading() {
    text(kLeft, 34, "font-size=\"19\" font-weight=\"600\" fill=\"#20201e\"",
         shortened(m_plot.title, kLongestTitle));
    text(kLeft, 54, "fill=\"#6a6a65\"", shortened(m_plot.subtitle, 2 * kLongestTitle));
    m_y = 60;
    if (m_plot.condition.empty()) return;
    text(kLeft, 73,
         "fill=\"#45453f\" font-family=\"ui-monospace,'DejaVu Sans Mono',monospace\" font-size=\"11.5\"",
         shortened(m_plot.condition, kLongestCondition));
    m_y = 80;
}

void PlotDrawing::legend() {
    double at = kLeft;
    const double y = m_y + 20;
    const auto label = [&](const char* what) {
        text(at + 24, y, "fill=\"#45453f\"", what);
        at += 24 + kLetter * static_cast<double>(std::string_view(what).size()) + 22;
    };
    m_svg += triangle(at + 8, y + 1);
    label("fired");
    rectangle(at, y - 10, 18, 12, "fill=\"url(#wait)\" stroke=\"#aebbc8\" stroke-width=\"0.6\"");
    label("waits");
    rectangle(at, y - 10, 18, 12,
              "fill=\"#f4b400\" fill-opacity=\"0.4\" stroke=\"#d39b00\" stroke-width=\"0.6\"");
    label("condition holds");
    m_svg += fmt::format("<path d=\"M{:.1f} {:.1f}h18\" stroke=\"#45453f\" stroke-dasharray=\"5 4\"/>\n", at,
                         y - 4);
    label("threshold");
    if (!m_plot.unwatched.empty()) {
        rectangle(at, y - 10, 18, 12, kUnwatchedStyle);
        label("not watched");
    }
    m_y += 26;
}

std::vector<std::pair<double, double>> PlotDrawing::pixels(const std::vector<PlotSpan>& spans) const {
    std::vector<std::pair<double, double>> joined;
    for (const PlotSpan& span : spans) {
        if (span.to < m_plot.since || span.from > m_plot.until) continue;
        const double left = x(span.from), right = std::max(x(span.to), left + 0.5);
        if (!joined.empty() && left - joined.back().second < 0.5 && left >= joined.back().first)
            joined.back().second = std::max(joined.back().second, right);
        else
            joined.emplace_back(left, right);
    }
    return joined;
}

void PlotDrawing::spans(double top, double bottom) {
    for (const auto& [left, right] : pixels(m_plot.unwatched))
        rectangle(left, top, right - left, bottom - top, kUnwatchedStyle);
    for (const auto& [left, right] : pixels(m_plot.held))
        rectangle(left, top, right - left, bottom - top, kHeldStyle);
}

void PlotDrawing::lane() {
    const double top = m_y + 14, bottom = top + kLaneHeight;
    m_laneTop = top;
    rectangle(kLeft, top, kRight - kLeft, kLaneHeight, "fill=\"#fafaf8\"");
    spans(top, bottom);
    for (const auto& [left, right] : pixels(m_plot.waits))
        rectangle(left, top + 5, right - left, kLaneHeight - 10,
                  "rx=\"2\" fill=\"url(#wait)\" stroke=\"#aebbc8\" stroke-width=\"0.6\"");
    text(kLeft - 8, top + 15, "text-anchor=\"end\" fill=\"#5b5b57\"", "alerts");
    m_y = bottom;
}

// The lines come last, over the panels and below nothing.
void PlotDrawing::fireLines() {
    if (!m_plot.ofMonitor) return;
    const double top = m_laneTop, bottom = m_y - kBelowAxis;
    double last = -1e9;
    const bool told = m_plot.fires.size() <= kMostTold;
    for (const Date fire : m_plot.fires) {
        if (fire < m_plot.since || fire > m_plot.until || x(fire) - last < kNearestFires) continue;
        last = x(fire);
        m_lines += "<g>";
        if (told) m_lines += "<title>fired " + xmlText(localText(fire, m_plot.zone)) + "</title>";
        m_lines +=
            fmt::format("<path d=\"M{:.1f} {:.1f}V{:.1f}\" stroke=\"{}\" stroke-opacity=\"0.4\"/>{}</g>\n",
                        last, top, bottom, kFireColour, triangle(last, top + 2));
    }
}

void PlotDrawing::textLane(const PlotTexts& texts) {
    const double top = m_y + kLaneHeight + 8;
    text(kLeft, top - 6, "fill=\"#45453f\" font-weight=\"600\"", shortened(texts.name, kLongestName));
    rectangle(kLeft, top, kRight - kLeft, kLaneHeight, "fill=\"#fafaf8\"");
    for (const PlotTexts::Block& block : texts.blocks) {
        const double left = x(block.from), width = x(block.to) - left;
        if (width < 0.5) continue;
        rectangle(left, top, width, kLaneHeight, "fill=\"#e9eef4\" stroke=\"#ffffff\" stroke-width=\"1\"");
        const auto fits = static_cast<std::size_t>(std::max(0.0, (width - 8) / kLetter));
        const std::string said = shortened(block.text, fits - 1);
        if (fits >= 3) text(left + 5, top + 15, "fill=\"#34404c\"", said);
    }
    m_y = top + kLaneHeight;
}

void PlotDrawing::panelTitle(const Panel& panel) {
    double at = kLeft;
    for (const PlotSeries* series : panel.series) {
        const std::string name = shortened(series->name, kLongestName);
        const std::string said =
            series->unit.empty() ? name : name + ", " + shortened(series->unit, kLongestName);
        m_svg += fmt::format(
            "<path d=\"M{:.1f} {:.1f}h16\" stroke=\"{}\" stroke-width=\"3\" "
            "stroke-linecap=\"round\"/>\n",
            at + 1.5, panel.top - 13, colour(*series));
        text(at + 25, panel.top - 9, "fill=\"#2e2e2b\"", said);
        at += 25 + kLetter * static_cast<double>(characters(said)) + 20;
    }
}

void PlotDrawing::threshold(const PlotThreshold& threshold, const PlotSeries& series, double y) {
    m_svg += fmt::format(
        "<path d=\"M{:.0f} {:.1f}H{:.0f}\" stroke=\"{}\" stroke-width=\"1.2\" "
        "stroke-dasharray=\"6 4\" stroke-opacity=\"0.85\"/>\n",
        kLeft, y, kRight, colour(series));
    const std::string label = shortened(threshold.label, kLongestName);
    const double width = kLetter * static_cast<double>(characters(label)) + 10;
    // A plate of its own, since a restless line runs through everything.
    rectangle(kRight - width - 3, y - 17, width, 14, "rx=\"3\" fill=\"#fafaf8\" fill-opacity=\"0.88\"");
    text(kRight - 8, y - 6, fmt::format("text-anchor=\"end\" font-size=\"11\" fill=\"{}\"", colour(series)),
         label);
}

}  // namespace vigil
