#include "host/readings/SensorClock.hpp"

#include <cmath>

namespace vigil {

SensorClock::Verdict SensorClock::judge(Date time, Date arrived) {
    constexpr double kTolerated = 1.5;       // seconds: times are often whole ones
    constexpr double kToleratedShare = 0.1;  // of the time that has passed
    if (!m_last || time >= *m_last) {
        m_last = time;
        m_late.count = 0;
        return Verdict::InOrder;
    }
    const bool again = m_late.count > 0 && time == m_late.last;
    if (again) return Verdict::Late;  // a transmission repeated
    const double passed = arrived.secondsSince(m_late.beganArriving);
    const double told = time.secondsSince(m_late.began);
    const bool keepsPace = m_late.count > 0 && time > m_late.last &&
                           std::abs(told - passed) <= kTolerated + kToleratedShare * std::abs(passed);
    if (!keepsPace) {
        m_late = {time, arrived, time, 1};
        return Verdict::Late;
    }
    m_late.last = time;
    if (++m_late.count < kBelievedAfter || told < kBelievedSeconds) return Verdict::Late;
    m_last = time;
    m_late.count = 0;
    return Verdict::SetBack;
}

}  // namespace vigil
