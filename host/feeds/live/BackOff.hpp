#pragma once

#include <algorithm>
#include <chrono>

namespace vigil {

/// How long to wait before what failed is tried again: twice as long each time, up to a bound, and from the
/// beginning again after it has gone well for a while. One thread at a time.
class BackOff {
  public:
    using Milliseconds = std::chrono::milliseconds;

    BackOff(Milliseconds first, Milliseconds most, Milliseconds settled)
        : m_first(first), m_most(most), m_settled(settled), m_next(first) {}

    /// It failed after it had gone well for so long; gives the pause.
    template <class Duration>
    Milliseconds failedAfter(Duration wentWell) {
        if (wentWell >= m_settled) m_next = m_first;
        const Milliseconds pause = std::min(m_next, m_most);
        m_next = std::min(pause * 2, m_most);
        return pause;
    }

  private:
    Milliseconds m_first, m_most, m_settled, m_next;
};

}  // namespace vigil
