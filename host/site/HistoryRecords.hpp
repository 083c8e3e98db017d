#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "host/site/SiteRecords.hpp"
#include "host_contract/Readings.hpp"
#include "platform/Date.hpp"

// What a history holds beside the readings. Times are of the host's clock, never of a sensor's.

namespace vigil {

/// "home.vigilsite-history": the history stands beside its site.
std::string historyFileOf(const std::string& siteFile);
/// The identity of a site (SiteFile::identity); empty where the file does not tell it.
std::string siteIdentity(const std::string& siteFile);

/// Why a plug-in came to watch its station, or ceased to.
enum class WatchReason : std::uint8_t {
    Run,       ///< the service began or ended
    Switched,  ///< the user turned the plug-in on or off
    Changed,   ///< it was added, removed or edited, or its station was
    Failed,    ///< it threw and was stopped
    Unknown,   ///< the process ended without a word; found by the next one
};

/// "run", "switched", "changed", "failed", "unknown"
const char* watchReasonName(WatchReason reason);
/// The other way round; a name that is none reads as `Unknown`.
WatchReason watchReasonNamed(std::string_view name);

/// Why a plug-in's archive was taken down.
enum class ArchiveReason : std::uint8_t {
    Began,   ///< it is what the plug-in was made from when it began to watch
    Edited,  ///< the user changed it while it watched; from here on it judges by this one
    Saved,   ///< its own state moved on (a wait, a snapshot)
};

/// "began", "edited", "saved", and the other way round; a name that is none reads as `Saved`.
const char* archiveReasonName(ArchiveReason reason);
ArchiveReason archiveReasonNamed(std::string_view name);

/// One notification as it was announced.
struct StoredNotification {
    RecordId station = 0;
    std::optional<std::uint64_t> sequence;  ///< the feed's number, where it had one
    Date started;                           ///< when it was announced
    std::shared_ptr<const Readings> readings;
};

/// A fire whose actions have ended.
struct StoredFire {
    RecordId station = 0;
    RecordId plugIn = 0;
    Date started;  ///< of the notification
    Date actionsBegan;
    Date actionsEnded;  ///< the wait counts from here
};

/// A stretch of time during which a plug-in watched its station.
struct StoredWatch {
    RecordId plugIn = 0;
    Date from;
    WatchReason began = WatchReason::Run;
    std::optional<Date> to;  ///< nothing: it still watches, or the process ended without a word
    std::optional<WatchReason> ended;
};

/// A plug-in as it was from a moment on.
struct StoredArchive {
    RecordId plugIn = 0;
    Date from;
    ArchiveReason reason = ArchiveReason::Began;
    std::string archive;
};

/// A plug-in that the history knows, by its last title.
struct StoredPlugIn {
    RecordId id = 0;
    RecordId station = 0;
    std::string title;
};

/// Notifications that came faster than they could be written down, or that the disk refused.
struct StoredLoss {
    RecordId station = 0;
    Date from;  ///< `started` of the first
    Date to;    ///< of the last
    std::uint64_t count = 0;
};

/// A station that the history knows, and what is kept of it.
struct StoredStation {
    RecordId id = 0;
    std::string name;  ///< empty where nobody told it
    std::uint64_t notifications = 0;
    std::optional<Date> first, last;  ///< `started`
    std::uint64_t bytes = 0;          ///< of the packed notifications
};

}  // namespace vigil
