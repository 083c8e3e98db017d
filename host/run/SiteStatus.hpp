#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/run/Histogram.hpp"
#include "host/site/SiteRecords.hpp"
#include "platform/Date.hpp"

// How a site that runs is doing, at one moment, for those who look at it.

namespace vigil {

struct MonitorStatus {
    RecordId id = 0;
    std::string title{};
    bool active = false;
    std::string state{};  ///< "watching", "waiting", "not active", "failed", "cannot be judged"
    std::string words{};  ///< the state with its reason
    std::string says{};   ///< what the monitor itself says
    std::string condition{};
    std::optional<Date> waitsUntil{};
    std::optional<Date> lastFire{};
    std::string lastAction{};  ///< empty: none that is known
    std::string lastResult{};
    bool lastFailed = false;
    std::uint64_t waiting = 0, missed = 0, fired = 0;  ///< cycles of this run
};

struct StationStatus {
    RecordId id = 0;
    std::string name{};
    std::string feed{};       ///< its URL without secrets
    std::string feedState{};  ///< "starting", "live", "retrying", "ended", "failed", "none"
    std::string feedWords{};
    std::optional<Date> lastData{};
    std::uint64_t messages = 0, notifications = 0;
    std::map<std::string, std::uint64_t> drops{};  ///< by why
    std::size_t queued = 0;                        ///< messages that wait
    std::size_t scripts = 0;                       ///< scripts that wait
    std::string lastProblem{};
    std::vector<MonitorStatus> monitors{};
};

struct SiteStatus {
    std::string site{};  ///< the path of its file
    std::string version{};
    long pid = 0;
    Date since{};
    Date now{};
    std::vector<StationStatus> stations{};
    std::vector<std::string> problems{};  ///< what is wrong now, in words; empty: all is well
    std::map<std::pair<std::string, std::string>, std::uint64_t> actions{};  ///< by kind and result
    std::uint64_t actionFailures = 0;
    std::size_t writesWaiting = 0;
    std::uint64_t writesRefused = 0, commits = 0;
    std::uint64_t historyWritten = 0, historyLost = 0, historyQueued = 0;
    std::size_t threads = 0, threadsAway = 0;
    std::size_t mainQueue = 0;
    std::uint64_t lostLogLines = 0;
    Histogram::Counts judged{}, fired{}, notifications{};
};

}  // namespace vigil
