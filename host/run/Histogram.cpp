#include "host/run/Histogram.hpp"

#include <algorithm>
#include <cmath>

namespace vigil {

void Histogram::add(double seconds) {
    const auto bound = std::lower_bound(kBounds.begin(), kBounds.end(), seconds);
    m_each[static_cast<std::size_t>(bound - kBounds.begin())].fetch_add(1, std::memory_order_relaxed);
    m_nanoseconds.fetch_add(static_cast<std::uint64_t>(std::llround(std::max(seconds, 0.0) * 1e9)),
                            std::memory_order_relaxed);
}

Histogram::Counts Histogram::counts() const {
    Counts counts;
    for (std::size_t i = 0; i < counts.each.size(); ++i) {
        counts.each[i] = m_each[i].load(std::memory_order_relaxed);
        counts.all += counts.each[i];
    }
    counts.sum = static_cast<double>(m_nanoseconds.load(std::memory_order_relaxed)) / 1e9;
    return counts;
}

}  // namespace vigil
