#pragma once

#include <array>
#include <cstddef>
#include <mutex>
#include <string>

namespace vigil {

/// What a host promises its plug-ins.
enum class HostPromise {
    WorldOpenWhileMade,
    MadeOnMainThread,
    BundleKnown,
    LoadedBeforeStart,
    StartedOnMainThread,
    NotificationInOpenWorld,
    NotificationOfOwnStation,
    NotificationHoldsReadings,
    CurrentReadingsIncludeBatch,
    OneNotificationAtATime,
    HandOverRunsOnMainThread,
    HandOverWaits,
    ClockNeverGoesBack,
    SilentWhenStopped,
    ArchiveKeepsKinds,
    ArchiveKeepsSharing,
    ArchiveKeepsAbsence,
    ArchiveKeepsStation,
    StoppedBeforeUnload,
};
inline constexpr std::size_t kHostPromises = 19;

/// One sentence for people.
const char* promiseText(HostPromise promise);

/// Which promises were seen kept and broken. One that was broken once stays broken. Any thread.
class HostPromises {
  public:
    void note(HostPromise promise, bool kept);
    /// A line each: "kept", "BROKEN" or "unseen", and the promise.
    std::string table() const;

  private:
    enum class Seen { Nothing, Kept, Broken };
    mutable std::mutex m_mutex;
    std::array<Seen, kHostPromises> m_seen{};
};

}  // namespace vigil
