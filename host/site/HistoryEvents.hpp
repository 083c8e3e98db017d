#pragma once

#include <memory>
#include <string>
#include <variant>

#include "host/site/HistoryRecords.hpp"

// What waits for the writer, in the order in which it was told.

namespace vigil {

struct WatchBegan {
    RecordId plugIn = 0;
    Date date;
    WatchReason reason = WatchReason::Run;
};

struct WatchEnded {
    RecordId plugIn = 0;
    Date date;
    WatchReason reason = WatchReason::Run;
};

struct ArchiveTaken {
    std::shared_ptr<const PlugInRecord> plugIn;
    Date date;
    ArchiveReason reason = ArchiveReason::Began;
};

struct StationNamed {
    RecordId station = 0;
    std::shared_ptr<const std::string> name;
};

struct StationForgotten {
    RecordId station = 0;
};

using HistoryEvent = std::variant<StoredNotification, StoredFire, WatchBegan, WatchEnded, ArchiveTaken,
                                  StationNamed, StationForgotten, StoredLoss>;

}  // namespace vigil
