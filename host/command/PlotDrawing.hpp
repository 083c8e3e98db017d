#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/command/Plot.hpp"
#include "host/command/PlotScale.hpp"

namespace vigil {

/// A drawing under way: from top to bottom, in pixels. One thread.
class PlotDrawing {
  public:
    static constexpr double kWidth = 900;
    static constexpr double kLeft = 62;
    static constexpr double kRight = 882;
    static constexpr double kBelowAxis = 50;  ///< for the times

    explicit PlotDrawing(const Plot& plot) : m_plot(plot) {}

    std::string draw();

  private:
    struct Panel {
        std::string unit;
        std::vector<const PlotSeries*> series{};
        double top = 0, bottom = 0;
    };

    std::vector<Panel> panels() const;
    double panelHeight(std::size_t count) const;
    double x(Date time) const;
    const char* colour(const PlotSeries& series) const;

    void heading();
    void legend();
    void lane();
    void textLane(const PlotTexts& texts);
    void spans(double top, double bottom);
    void panel(Panel& panel);
    void panelTitle(const Panel& panel);
    void values(const Panel& panel, const ValueScale& scale);
    void threshold(const PlotThreshold& threshold, const PlotSeries& series, double y);
    void timeGrid(double top, double bottom);
    void timeAxis();
    void fireLines();

    void text(double x, double y, std::string_view style, std::string_view text);
    void rectangle(double left, double top, double width, double height, std::string_view style);
    /// Spans in pixels: those that touch are one, so that a long time makes no big file.
    std::vector<std::pair<double, double>> pixels(const std::vector<PlotSpan>& spans) const;

    const Plot& m_plot;
    std::string m_svg{};
    std::string m_lines{};  // over all panels, drawn last
    double m_y = 0;         // what is above is drawn
    double m_laneTop = 0;   // where the lines of the fires begin
    std::vector<TimeTick> m_ticks{};
};

}  // namespace vigil
