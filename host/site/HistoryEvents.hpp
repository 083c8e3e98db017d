#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <variant>
#include <vector>

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

/// What an event that is no notification takes in memory, in bytes.
std::size_t sizeOf(const HistoryEvent& event);

/// Of each plug-in's archives in `events` only the newest stays, where the oldest of them stood: as an edit
/// where one of those that went began or edited it.
void keepNewestArchives(std::vector<HistoryEvent>& events);

}  // namespace vigil
