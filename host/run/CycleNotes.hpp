#pragma once

#include <atomic>
#include <cstdint>
#include <limits>
#include <optional>

#include "host/run/Histogram.hpp"
#include "host_contract/CycleObserver.hpp"
#include "platform/Date.hpp"

namespace vigil {

/// How long cycles took, of all plug-ins of a site.
struct CycleTimes {
    Histogram judged;  ///< without those that fired
    Histogram fired;   ///< with their actions
};

/// What is known of a plug-in's cycles in this run. Set on the posting thread, read from any.
class CycleNotes : public CycleObserver {
  public:
    explicit CycleNotes(CycleTimes& times) : m_times(times) {}

    /// The announcing thread's cycles are timed from here on, each from the end of the one before.
    static void begin();

    void cycleEnded(const Object& plugIn, const CycleReport& report) override;

    std::uint64_t count(CycleOutcome outcome) const {
        return m_counts[static_cast<int>(outcome)].load(std::memory_order_relaxed);
    }
    /// When it last fired in this run, by the end of its wait's beginning; nothing when it has not.
    std::optional<Date> next() const;
    std::optional<CycleOutcome> last() const;
    /// Whether it has been judged, or what it was could not be written down, since the last time this was
    /// asked.
    bool takeChanged() { return m_changed.exchange(false); }
    /// What was to be written down of it does not stand.
    void noteUnsaved() {
        m_unsaved = true;
        m_changed = true;
    }
    bool takeUnsaved() { return m_unsaved.exchange(false); }

  private:
    static constexpr double kNever = -std::numeric_limits<double>::infinity();

    CycleTimes& m_times;
    std::atomic<std::uint64_t> m_counts[3]{};
    std::atomic<double> m_next{kNever};
    std::atomic<int> m_last{-1};
    std::atomic<bool> m_changed{false};
    std::atomic<bool> m_unsaved{false};
};

}  // namespace vigil
