#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/command/Plot.hpp"

namespace vigil {

/// The usual time between two points (the median), in seconds; 0 where there are too few.
double usualStep(const std::vector<PlotPoint>& points);

/// Appends the `d` of a path through the points in pixels, tenths kept. Of each pixel's column the first, the
/// lowest, the highest and the last point are kept, in their order. A point that is not finite, and a step of
/// more than `longestStep` seconds, interrupt the line; a point alone becomes a dot.
void appendPath(std::string& to, const std::vector<PlotPoint>& points, double longestStep,
                const std::function<double(Date)>& x, const std::function<double(double)>& y);

}  // namespace vigil
