#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "host/run/FireDesk.hpp"
#include "host/site/SiteRecords.hpp"

namespace vigil {

class QRVLog;

/// Writes down what rows do: what is asked for, when it began, how it ended. An effect begins when its record
/// stands in the site file, or when that cannot be had (a full disk): an alarm is worth more than its record.
class EffectLedger {
  public:
    /// All are the caller's and outlive this.
    EffectLedger(FireDesk& desk, SiteWriter& writer, QRVLog& log, std::function<Date()> clock);

    /// A record for what is asked for now on behalf of `plugIn` (absent: nobody knows), as a part of the fire
    /// that acts. Main thread.
    EffectRecord make(EffectRecord::Kind kind, std::string what, const std::shared_ptr<const Object>& plugIn);

    /// Writes the record and calls `release` once, on the writer's thread. Any thread.
    void queued(const EffectRecord& record, std::function<void()> release);
    void started(EffectRecord& record, Date when);
    /// The same for what must not begin before that is written down: `go` is called as `release` is, and told
    /// whether it is.
    void started(EffectRecord& record, Date when, std::function<void(bool written)> go);
    /// A record for the next attempt at what that one stands for. Any thread.
    EffectRecord another(const EffectRecord& last);
    /// `failed` makes it count among the failures and puts a line into the log, with the
    /// first line of `detail`.
    void ended(EffectRecord record, Date when, std::string result, std::string detail, bool failed);

    Date now() const { return m_clock(); }

    /// From now on no effect that has not begun begins any more: whoever is released ends its record as
    /// interrupted. Any thread.
    void stopEffects() { m_stopping = true; }
    bool isStopping() const { return m_stopping; }

    struct Last {
        std::string what{};
        std::string result{};
        Date when;
        bool failed = false;
    };
    /// What it did before this run began, as the site file tells. Before anything else.
    void remember(const EffectRecord& ended);
    /// What a plug-in did last; nothing when nobody knows of anything. Any thread.
    std::optional<Last> last(RecordId plugIn) const;
    /// How many ended with which result, by kind and result. Any thread.
    std::map<std::pair<std::string, std::string>, std::uint64_t> counts() const;
    std::uint64_t failures() const;

  private:
    FireDesk& m_desk;
    SiteWriter& m_writer;
    QRVLog& m_log;
    const std::function<Date()> m_clock;

    mutable std::mutex m_mutex;
    std::map<RecordId, Last> m_last;
    std::map<std::pair<std::string, std::string>, std::uint64_t> m_counts;
    std::uint64_t m_failures = 0;
    std::atomic<bool> m_stopping{false};
};

/// "script", "sound", "speech", "mail", "sms"
const char* effectKindName(EffectRecord::Kind kind);

/// It has ended, and not as it should.
bool isFailure(const EffectRecord& effect);

}  // namespace vigil
