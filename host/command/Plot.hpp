#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/Date.hpp"
#include "platform/World.hpp"

namespace vigil {

struct PlotPoint {
    Date time;
    double value = 0;  ///< not finite: a gap
};

/// A literal that the condition compares a reading with.
struct PlotThreshold {
    double value = 0;
    std::string label;  ///< "< 0"
};

/// One reading over time.
struct PlotSeries {
    std::string key;
    std::string name;
    std::string unit;
    std::vector<PlotPoint> points{};  ///< by time
    std::vector<PlotThreshold> thresholds{};
};

struct PlotSpan {
    Date from, to;
};

/// A reading that is a text: who said what for how long.
struct PlotTexts {
    struct Block {
        Date from, to;
        std::string text;
    };
    std::string key;
    std::string name;
    std::vector<Block> blocks{};
};

/// What is drawn. Plain data, any thread.
struct Plot {
    std::string title;
    std::string subtitle;
    std::string condition{};
    Date since, until;
    bool ofMonitor = false;  ///< with a lane for what the monitor did
    std::vector<PlotSeries> series{};
    std::vector<PlotTexts> texts{};
    std::vector<PlotSpan> held{};       ///< the condition held
    std::vector<PlotSpan> waits{};      ///< the monitor waited after a fire
    std::vector<PlotSpan> unwatched{};  ///< nobody judged
    std::vector<Date> fires{};
    std::vector<std::string> absent{};    ///< keys that were asked for and that nothing held
    std::function<LocalTime(Date)> zone;  ///< what times of day are shown in
};

/// A drawing of 900 pixels' width that stands by itself: no scripts, no other files. Of each series at most
/// four points a pixel are kept: the first and last, the lowest and highest; so its size depends on the
/// drawing, not on the time.
std::string plotSvg(const Plot& plot);

}  // namespace vigil
