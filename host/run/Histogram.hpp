#pragma once

#include <array>
#include <atomic>
#include <cstdint>

namespace vigil {

/// Counts of times by bounds that grow by half decades, from 1 µs to 10 s. Adding costs two relaxed atomic
/// additions. Any thread.
class Histogram {
  public:
    static constexpr std::array<double, 15> kBounds{1e-6,    3.16e-6, 1e-5,    3.16e-5, 1e-4,
                                                    3.16e-4, 1e-3,    3.16e-3, 1e-2,    3.16e-2,
                                                    1e-1,    3.16e-1, 1,       3.16,    10};

    void add(double seconds);

    struct Counts {
        /// Of those up to each bound that are above the one before it; the last counts the rest.
        std::array<std::uint64_t, kBounds.size() + 1> each{};
        std::uint64_t all = 0;
        double sum = 0;  ///< seconds, to the nanosecond
    };
    Counts counts() const;

  private:
    std::array<std::atomic<std::uint64_t>, kBounds.size() + 1> m_each{};
    std::atomic<std::uint64_t> m_nanoseconds{0};
};

}  // namespace vigil
