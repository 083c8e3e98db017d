#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "host/site/HistoryCounts.hpp"
#include "host/site/HistoryRecords.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// A sentence for the log. On the writer's thread, or inside `open`.
using HistoryTeller = std::function<void(const std::string& sentence)>;

struct HistoryOptions {
    int retentionDays = 400;  ///< 1 or more; older notifications are deleted in small steps
    /// What has been appended is committed at most so much later (0: at once).
    std::chrono::milliseconds flushEvery{1000};
    /// Notifications that wait to be written at most; against a disk that stands still.
    std::size_t mostQueued = 16384;
    HistoryTeller tell{};
};

/// Writes the history of a site: one packed row a notification, the fires, and who watched when. A thread of
/// its own packs and inserts; what is appended is committed in groups. What cannot be kept up with is refused
/// and written down as a loss, so that nobody takes a hole for silence. One writer a file.
///
/// A history is disposable: a damaged file is set aside as "…-history.damaged-2026-11-21T103418Z" (the time
/// of its last change) with a sentence, and a new one is begun. Where the last writer did not close the file,
/// it is checked whole beside the writing, and set aside should it turn out to be damaged.
///
/// Every member may be called from any thread. What is told of one station by one thread is kept in its
/// order.
class HistoryWriter {
  public:
    using Options = HistoryOptions;

    /// An error where the file cannot be made or is being written by another process; it says which.
    static Result<std::unique_ptr<HistoryWriter>> open(const std::string& siteFile, Options options = {});
    /// Writes what waits, and closes the file.
    ~HistoryWriter();

    /// A notification, after it was announced or just before. Costs the caller a push into a queue. One whose
    /// date is not finite is refused.
    void append(RecordId station, std::optional<std::uint64_t> sequence, Date started,
                std::shared_ptr<const Readings> batch);
    /// A fire, when its actions have ended. `started` is that of its notification, to the bit;
    /// `actionsEnded` is what the wait counts from (the cycle's next date minus the interval, where one wants
    /// a replay to agree to the microsecond).
    void fired(RecordId station, RecordId plugIn, Date started, Date actionsBegan, Date actionsEnded);
    /// From here on the plug-in watches, or no longer. Twice the same changes nothing.
    void started(RecordId plugIn, Date date, WatchReason reason);
    void stopped(RecordId plugIn, Date date, WatchReason reason);
    /// The plug-in's keyed archive. `Saved` is kept at most once an hour and only where it differs from the
    /// last one of the plug-in, `Edited` only where it differs, `Began` always.
    void archived(const PlugInRecord& plugIn, Date date, ArchiveReason reason);
    void archived(PlugInRecord&& plugIn, Date date, ArchiveReason reason);
    /// What a station is called, for readers of the history.
    void named(RecordId station, const std::string& name);
    /// Forgets a station with all that was kept of it and of its plug-ins.
    void forget(RecordId station);

    /// Returns when everything that was appended before is committed, or has failed.
    void flush();
    HistoryCounts counts() const;
    const std::string& file() const;

  private:
    class Thread;
    explicit HistoryWriter(std::unique_ptr<Thread> thread);

    const std::unique_ptr<Thread> m_thread;
};

}  // namespace vigil
