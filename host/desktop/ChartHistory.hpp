#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/desktop/Columns.hpp"
#include "host/site/SiteRecords.hpp"

namespace vigil {

/// What a chart wants of a site's history.
struct ChartQuery {
    std::string siteFile{};
    RecordId station = 0;
    RecordId monitor = 0;
    std::vector<std::string> keys{};
    std::vector<std::string> texts{};  ///< those of the keys whose texts are wanted too
    Date since{};
    bool itself = true;  ///< what came at `since` too; else only what came after it
    Date now{};          ///< about when the last notification came
    /// A long reading tells of itself first after so many milliseconds, and then so often.
    int toldAfter = 300, toldEvery = 100;
};

/// What was found.
struct ChartRows {
    Columns columns{};
    std::vector<double> fires{};  ///< of the monitor, all that are known, in seconds since 2001
    std::string trouble{};        ///< why there is nothing
};

/// Hears in a long reading which share of it is done, from 0 to 1. False ends the reading.
using ChartProgress = std::function<bool(double share)>;

/// Reads the columns of the keys, and nothing else, from the history. Waits for the disk. Any thread.
ChartRows readChart(const ChartQuery& query, const ChartProgress& goesOn);

}  // namespace vigil
