#pragma once

#include <optional>

#include "platform/Date.hpp"

namespace vigil {

/// Tells packets of one sensor that come late from those of a sensor whose clock was set back. One thread at
/// a time.
class SensorClock {
  public:
    enum class Verdict {
        InOrder,
        Late,    ///< a packet with a later time came before
        SetBack  ///< its times go on from an earlier one: they are in order again from here on
    };

    /// So many late packets in a row, whose times rise as fast as they arrive over at least so many seconds,
    /// are a clock that was set back, not stragglers: those come at once, or the newest first.
    static constexpr int kBelievedAfter = 3;
    static constexpr double kBelievedSeconds = 5;

    /// For a packet with a time of its own.
    Verdict judge(Date time, Date arrived);
    /// The host's own clock was set back: whatever comes next is in order.
    void forget() { *this = {}; }

  private:
    struct Run {
        Date began;
        Date beganArriving;
        Date last;
        int count = 0;
    };
    std::optional<Date> m_last;
    Run m_late;
};

}  // namespace vigil
