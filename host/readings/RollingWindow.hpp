#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>

#include "platform/Date.hpp"

namespace vigil {

/// A number as it is held and as the user reads it.
struct RollingSample {
    double value = 0;
    double unitValue = 0;
};

/// What the last minutes held of one reading. Time is cut into slots, of which a window has `kSlots` (2 s for
/// 10 minutes); a sample belongs to the slot of its time, and the window at a moment is that moment's slot
/// and the `kSlots` - 1 before it. So the memory is bounded (at most `kSlots` * 64 bytes), however often
/// a station sends. Samples may come in any order. One thread at a time.
class RollingWindow {
  public:
    static constexpr std::size_t kSlots = 300;

    explicit RollingWindow(double minutes) : m_slotSeconds(minutes * 60 / static_cast<double>(kSlots)) {}

    /// One that is older than the window of the newest one is passed over. `time` is finite and within some
    /// 10,000 years.
    void add(Date time, RollingSample sample);
    /// Forgets the slots later than that of `time`: a clock was set back.
    void forgetAfter(Date time);

    /// Each sample counts alike. Nothing where the window holds none.
    std::optional<RollingSample> mean(Date now) const;
    /// Of directions in degrees: that of the sum of their arrows, 0 up to 360. Nothing where they cancel out.
    std::optional<RollingSample> meanDirection(Date now) const;
    std::optional<RollingSample> min(Date now) const;
    std::optional<RollingSample> max(Date now) const;

    std::size_t slotsInUse() const { return m_slots.size(); }

  private:
    struct Slot {
        std::int64_t index;
        double count;
        RollingSample sum;
        RollingSample least;
        RollingSample most;
        double east;  // of the arrows
        double north;
    };
    std::int64_t slotOf(Date time) const;
    template <class Take>
    bool each(Date now, const Take& take) const;

    double m_slotSeconds;
    std::deque<Slot> m_slots;  // by index
};

/// For how long something has been so without interruption. One thread at a time.
class RollingRun {
  public:
    /// Seconds without a sample after which nobody knows whether it was so meanwhile: the run begins anew.
    static constexpr double kLongestGap = 7200;

    /// A sample older than the last one is passed over.
    void add(Date time, bool holds);
    /// A clock was set back: the run begins anew with the next sample.
    void forget() { m_since = m_last = std::nullopt; }
    /// From the first to the last sample of the run; 0 where there is none.
    double minutes() const { return m_since ? m_last->secondsSince(*m_since) / 60 : 0; }

  private:
    std::optional<Date> m_since;
    std::optional<Date> m_last;
};

}  // namespace vigil
