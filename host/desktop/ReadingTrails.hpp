#pragma once

#include <map>
#include <string>
#include <vector>

#include "host_contract/Readings.hpp"
#include "platform/Date.hpp"

namespace vigil {

/// Points that a trail keeps; when it is full every second one goes, so it grows coarser and not longer.
inline constexpr std::size_t kTrailPoints = 512;
/// And how far back it reaches.
inline constexpr double kTrailSeconds = 6 * 3600.0;

/// What the numbers of a station were in the last hours, as far as a small picture needs it. Main thread.
class ReadingTrails {
  public:
    struct Point {
        double when = 0;  ///< seconds since 2001
        double value = 0;
    };
    /// Takes down what has a later time than before.
    void take(const Readings& readings, Date now);
    /// Oldest first; nothing for a key without numbers.
    const std::vector<Point>& of(const std::string& key) const;
    /// Counts what was taken.
    std::uint64_t changes() const { return m_changes; }

  private:
    struct Trail {
        std::vector<Point> points;
        double apart = 0;  // seconds that a new point stays away from the last one
    };
    std::map<std::string, Trail> m_trails;
    std::uint64_t m_changes = 0;
};

}  // namespace vigil
