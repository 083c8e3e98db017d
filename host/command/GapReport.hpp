#pragma once

#include <string>
#include <vector>

#include "host/run/RunningSite.hpp"
#include "host/site/HistoryReader.hpp"
#include "host/site/SiteFile.hpp"
#include "host/site/SiteRecords.hpp"
#include "host_contract/QRVLog.hpp"
#include "platform/InterfaceFiles.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// What a monitor missed between two runs.
struct GapReport {
    struct Gap {
        Date from, to;
        WatchReason why = WatchReason::Unknown;
        std::size_t notifications = 0;  ///< that are stored of this time all the same
        std::vector<Date> wouldHaveFired{};
    };

    std::string title;
    std::vector<Gap> gaps;
    std::vector<Date> unfinished;  ///< fires whose actions may not all have been run
};

/// For a monitor that is about to watch again at `now`: since when it has not, and, where readings of that
/// time are stored all the same (a feed that catches up), when it would have fired. A monitor that the user
/// switched off, or that has never watched, has no gap. `incomplete` are the fires that the site file holds
/// without a completion, of whatever plug-in. The module must be loaded. Main thread.
Result<GapReport> gapReport(HistoryReader& reader, const StoredPlugIn& monitor, const std::string& station,
                            Date now, const std::vector<FireRecord>& incomplete, QRVLog& log,
                            InterfaceFiles& interfaceFiles);

/// The same as sentences; none where there is nothing to say.
///
///     Frost: not watched from 2026-11-20 23:10:00 +0000 to 2026-11-21 06:02:11 +0000 (the process ended
///     without a word). Nothing is known of that time.
std::vector<std::string> gapSentences(const GapReport& report);

/// Tells the log what every active monitor of a site has missed, at most `kMostTold` of them by name; the
/// rest are counted. Says nothing where there is no history yet.
inline constexpr std::size_t kMostTold = 20;
void tellGaps(const SiteFile& site, const RunningSite& running, QRVLog& log);

}  // namespace vigil
