#include "host/command/PlotPath.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include <fmt/format.h>

namespace vigil {
namespace {

/// Collects a stretch of line and writes it column by column.
class Stretch {
  public:
    Stretch(std::string& to, const std::function<double(Date)>& x, const std::function<double(double)>& y)
        : m_to(to), m_x(x), m_y(y) {}

    void add(const PlotPoint& point) {
        const double x = m_x(point.time);
        const double column = std::floor(x);
        if (m_count > 0 && column != m_column) writeColumn();
        m_column = column;
        const Pixel pixel{m_count++, x, m_y(point.value)};
        if (m_inColumn++ == 0) m_first = m_lowest = m_highest = pixel;
        if (pixel.y > m_lowest.y) m_lowest = pixel;
        if (pixel.y < m_highest.y) m_highest = pixel;
        m_last = pixel;
    }

    void end() {
        if (m_count == 0) return;
        writeColumn();
        if (m_written == 1) m_to += "h0.1";  // with round ends this is a dot
        m_count = m_written = 0;
    }

  private:
    struct Pixel {
        std::size_t number = 0;
        double x = 0, y = 0;
    };

    void writeColumn() {
        std::array<Pixel, 4> kept{m_first, m_lowest, m_highest, m_last};
        std::sort(kept.begin(), kept.end(),
                  [](const Pixel& a, const Pixel& b) { return a.number < b.number; });
        const Pixel* before = nullptr;
        for (const Pixel& pixel : kept) {
            if (!before || before->number != pixel.number) write(pixel);
            before = &pixel;
        }
        m_inColumn = 0;
    }

    void write(const Pixel& pixel) {
        fmt::format_to(std::back_inserter(m_to), "{}{:.1f} {:.1f}", m_written == 0 ? 'M' : 'L', pixel.x,
                       pixel.y);
        ++m_written;
    }

    std::string& m_to;
    const std::function<double(Date)>& m_x;
    const std::function<double(double)>& m_y;
    std::size_t m_count = 0, m_inColumn = 0, m_written = 0;
    double m_column = 0;
    Pixel m_first, m_lowest, m_highest, m_last;
};

}  // namespace

double usualStep(const std::vector<PlotPoint>& points) {
    std::vector<double> steps;
    for (std::size_t i = 1; i < points.size(); ++i)
        if (const double step = points[i].time.secondsSince(points[i - 1].time); step > 0)
            steps.push_back(step);
    if (steps.empty()) return 0;
    const auto middle = steps.begin() + static_cast<std::ptrdiff_t>(steps.size() / 2);
    std::nth_element(steps.begin(), middle, steps.end());
    return *middle;
}

void appendPath(std::string& to, const std::vector<PlotPoint>& points, double longestStep,
                const std::function<double(Date)>& x, const std::function<double(double)>& y) {
    Stretch stretch(to, x, y);
    const PlotPoint* before = nullptr;
    for (const PlotPoint& point : points) {
        const bool gap = before && longestStep > 0 && point.time.secondsSince(before->time) > longestStep;
        if (gap || !std::isfinite(point.value)) stretch.end();
        if (std::isfinite(point.value)) stretch.add(point);
        before = &point;
    }
    stretch.end();
}

}  // namespace vigil
