#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/site/HistoryRecords.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// Half open: from `since` on, before `until`. Open ends where absent.
struct HistoryRange {
    std::optional<Date> since{};
    std::optional<Date> until{};
};

/// The notifications of one station, one after another, in the order in which they came. Sees the file as it
/// was when the source was made. One thread at a time; the reader outlives it.
class HistorySource {
  public:
    virtual ~HistorySource();
    /// The next one, or nothing at the end. A row that cannot be read is an error with its place, and the
    /// next call goes on behind it; where the file itself fails, that is the end.
    virtual Result<std::optional<StoredNotification>> next() = 0;
};

/// Reads a history, also while another process writes it. One thread at a time.
class HistoryReader {
  public:
    /// An error where there is no history yet, or where it is none that this program reads.
    static Result<std::unique_ptr<HistoryReader>> open(const std::string& siteFile);
    ~HistoryReader();

    Result<std::vector<StoredStation>> stations();
    Result<std::vector<StoredPlugIn>> plugIns();
    Result<std::unique_ptr<HistorySource>> source(RecordId station, HistoryRange range = {});
    /// The same, with the readings of those keys alone, which takes a third of the time where they are few.
    Result<std::unique_ptr<HistorySource>> sourceOf(RecordId station, HistoryRange range,
                                                    std::vector<std::string> keys);
    /// The last notification of the station that was announced at `at` or before (without it: the very last).
    Result<std::optional<StoredNotification>> latest(RecordId station, std::optional<Date> at = {});
    /// By `started`, in the order in which they happened.
    Result<std::vector<StoredFire>> fires(RecordId plugIn, HistoryRange range = {});
    /// Stretches that overlap the range.
    Result<std::vector<StoredWatch>> watches(RecordId plugIn, HistoryRange range = {});
    /// By `from`.
    Result<std::vector<StoredArchive>> archives(RecordId plugIn, HistoryRange range = {});
    /// Losses that overlap the range.
    Result<std::vector<StoredLoss>> losses(RecordId station, HistoryRange range = {});
    /// Of file and log together.
    std::uint64_t bytes() const;
    const std::string& file() const;

  private:
    class File;
    explicit HistoryReader(std::unique_ptr<File> file);

    const std::unique_ptr<File> m_file;
};

}  // namespace vigil
