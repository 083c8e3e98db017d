#include "host/run/CycleNotes.hpp"

#include <chrono>

namespace vigil {
namespace {

using Clock = std::chrono::steady_clock;
thread_local Clock::time_point t_before;

}  // namespace

void CycleNotes::begin() {
    t_before = Clock::now();
}

void CycleNotes::cycleEnded(const Object&, const CycleReport& report) {
    m_counts[static_cast<int>(report.outcome)].fetch_add(1, std::memory_order_relaxed);
    m_last.store(static_cast<int>(report.outcome), std::memory_order_relaxed);
    m_next.store(report.next ? report.next->secondsSinceReference() : kNever, std::memory_order_relaxed);
    if (report.outcome != CycleOutcome::Waiting) m_changed.store(true, std::memory_order_relaxed);
    const auto now = Clock::now();
    const double seconds = std::chrono::duration<double>(now - t_before).count();
    t_before = now;
    (report.outcome == CycleOutcome::Fired ? m_times.fired : m_times.judged).add(seconds);
}

std::optional<Date> CycleNotes::next() const {
    const double seconds = m_next.load(std::memory_order_relaxed);
    if (seconds == kNever) return std::nullopt;
    return Date(seconds);
}

std::optional<CycleOutcome> CycleNotes::last() const {
    const int last = m_last.load(std::memory_order_relaxed);
    if (last < 0) return std::nullopt;
    return static_cast<CycleOutcome>(last);
}

}  // namespace vigil
