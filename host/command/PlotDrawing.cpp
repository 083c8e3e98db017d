#include "host/command/PlotDrawing.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include <fmt/format.h>

#include "host/command/PlotPath.hpp"
#include "host/command/Svg.hpp"

namespace vigil {
namespace {

// Told apart also by those who see few colours.
constexpr std::array kColours{"#1f6fb4", "#c2570c", "#2b8a4b", "#7a4fb0", "#0f8b8d", "#b0366f"};
constexpr std::size_t kTimeTicks = 9;
constexpr double kPanelGap = 34;
constexpr double kPixelsOfStep = 42;
/// Above and below a line, as a share of its height.
constexpr double kRoom = 0.04;
constexpr double kAllOfIt = 100;
/// A line is interrupted where more than so many of its usual steps are missing.
constexpr double kStepsOfGap = 3.5;

}  // namespace

std::string plotSvg(const Plot& plot) {
    return PlotDrawing(plot).draw();
}

std::string PlotDrawing::draw() {
    m_ticks = timeTicks(m_plot.since, m_plot.until, kTimeTicks, m_plot.zone);
    heading();
    if (m_plot.ofMonitor) {
        legend();
        lane();
    }
    for (const PlotTexts& texts : m_plot.texts)
        textLane(texts);
    auto all = panels();
    for (Panel& one : all)
        panel(one);
    timeAxis();
    fireLines();
    constexpr const char* kHead =
        "<svg xmlns=\"http://www.w3.org/2000/svg\" role=\"img\" viewBox=\"0 0 {0:.0f} {1:.0f}\" "
        "width=\"{0:.0f}\" height=\"{1:.0f}\" font-family=\"system-ui,'Segoe UI',Roboto,'DejaVu Sans',"
        "Helvetica,Arial,sans-serif\" font-size=\"12\">\n<title>{2}</title>\n<desc>{3}</desc>\n"
        "<defs><pattern id=\"wait\" width=\"6\" height=\"6\" patternUnits=\"userSpaceOnUse\" "
        "patternTransform=\"rotate(45)\"><rect width=\"6\" height=\"6\" fill=\"#e8edf2\"/>"
        "<rect width=\"2\" height=\"6\" fill=\"#aebbc8\"/></pattern></defs>\n"
        "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n";
    std::string whole =
        fmt::format(fmt::runtime(kHead), kWidth, m_y, xmlText(m_plot.title), xmlText(m_plot.subtitle));
    return whole + m_svg + m_lines + "</svg>\n";
}

double PlotDrawing::x(Date time) const {
    const double length = m_plot.until.secondsSince(m_plot.since);
    const double share = length > 0 ? time.secondsSince(m_plot.since) / length : 0;
    return kLeft + std::clamp(share, 0.0, 1.0) * (kRight - kLeft);
}

const char* PlotDrawing::colour(const PlotSeries& series) const {
    const auto number = static_cast<std::size_t>(&series - m_plot.series.data());
    return kColours[number % kColours.size()];
}

// Readings of one unit share a panel; those without a unit have nothing in common.
std::vector<PlotDrawing::Panel> PlotDrawing::panels() const {
    std::vector<Panel> all;
    for (const PlotSeries& series : m_plot.series) {
        const auto same = std::find_if(all.begin(), all.end(), [&](const Panel& panel) {
            return !series.unit.empty() && panel.unit == series.unit;
        });
        Panel& panel = same == all.end() ? all.emplace_back() : *same;
        panel.unit = series.unit;
        panel.series.push_back(&series);
    }
    return all;
}

double PlotDrawing::panelHeight(std::size_t count) const {
    return count <= 1 ? 300 : count == 2 ? 190 : count == 3 ? 150 : 120;
}

void PlotDrawing::panel(Panel& panel) {
    double low = std::numeric_limits<double>::infinity(), high = -low;
    for (const PlotSeries* series : panel.series) {
        for (const PlotPoint& point : series->points)
            if (std::isfinite(point.value))
                low = std::min(low, point.value), high = std::max(high, point.value);
        for (const PlotThreshold& threshold : series->thresholds)
            low = std::min(low, threshold.value), high = std::max(high, threshold.value);
    }
    panel.top = m_y + kPanelGap;
    panel.bottom = panel.top + panelHeight(panels().size());
    // A line does not run along the edge, except at the end of what can be.
    const double room = kRoom * (high - low);
    if (low != 0) low -= room;
    if (high != kAllOfIt || panel.unit != "%") high += room;
    const ValueScale scale = ValueScale::around(low, high, (panel.bottom - panel.top) / kPixelsOfStep);
    panelTitle(panel);
    rectangle(kLeft, panel.top, kRight - kLeft, panel.bottom - panel.top, "fill=\"#fafaf8\"");
    spans(panel.top, panel.bottom);
    timeGrid(panel.top, panel.bottom);
    values(panel, scale);
    m_y = panel.bottom;
}

void PlotDrawing::values(const Panel& panel, const ValueScale& scale) {
    const auto y = [&](double value) {
        return panel.bottom - scale.share(value) * (panel.bottom - panel.top);
    };
    for (const ValueTick& tick : scale.ticks) {
        m_svg += fmt::format("<path d=\"M{:.0f} {:.1f}H{:.0f}\" stroke=\"#dededa\"/>\n", kLeft, y(tick.value),
                             kRight);
        text(kLeft - 8, y(tick.value) + 4, "text-anchor=\"end\" fill=\"#5b5b57\"", tick.label);
    }
    for (const PlotSeries* series : panel.series) {
        m_svg += "<path d=\"";
        appendPath(
            m_svg, series->points, kStepsOfGap * usualStep(series->points),
            [this](Date time) { return x(time); }, y);
        m_svg += fmt::format(
            "\" fill=\"none\" stroke=\"{}\" stroke-width=\"1.6\" stroke-linejoin=\"round\" "
            "stroke-linecap=\"round\"/>\n",
            colour(*series));
    }
    for (const PlotSeries* series : panel.series)
        for (const PlotThreshold& one : series->thresholds)
            threshold(one, *series, y(one.value));
}

void PlotDrawing::timeGrid(double top, double bottom) {
    for (const TimeTick& tick : m_ticks)
        m_svg += fmt::format("<path d=\"M{0:.1f} {1:.1f}V{2:.1f}\" stroke=\"{3}\"/>\n", x(tick.time), top,
                             bottom, tick.newDay ? "#c4c4be" : "#ececE8");
}

void PlotDrawing::timeAxis() {
    m_svg += fmt::format("<path d=\"M{:.0f} {:.1f}H{:.0f}\" stroke=\"#8a8a84\"/>\n", kLeft, m_y, kRight);
    for (const TimeTick& tick : m_ticks) {
        m_svg += fmt::format("<path d=\"M{:.1f} {:.1f}v5\" stroke=\"#8a8a84\"/>\n", x(tick.time), m_y);
        text(x(tick.time), m_y + 19,
             tick.newDay ? "text-anchor=\"middle\" fill=\"#2e2e2b\" font-weight=\"600\""
                         : "text-anchor=\"middle\" fill=\"#5b5b57\"",
             tick.label);
    }
    text(kRight, m_y + 38, "text-anchor=\"end\" fill=\"#8a8a84\" font-size=\"11\"",
         "times in " + zoneText(m_plot.since, m_plot.zone));
    m_y += kBelowAxis;
}

void PlotDrawing::text(double atX, double atY, std::string_view style, std::string_view said) {
    m_svg += fmt::format("<text x=\"{:.1f}\" y=\"{:.1f}\" {}>{}</text>\n", atX, atY, style, xmlText(said));
}

void PlotDrawing::rectangle(double left, double top, double width, double height, std::string_view style) {
    m_svg += fmt::format("<rect x=\"{:.1f}\" y=\"{:.1f}\" width=\"{:.1f}\" height=\"{:.1f}\" {}/>\n", left,
                         top, width, height, style);
}

}  // namespace vigil
