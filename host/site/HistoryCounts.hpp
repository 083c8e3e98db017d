#pragma once

#include <cstdint>
#include <string>

namespace vigil {

/// How a history's writer keeps up.
struct HistoryCounts {
    std::uint64_t appended = 0;  ///< notifications handed over, the lost ones included
    std::uint64_t written = 0;   ///< committed
    std::uint64_t refused = 0;   ///< the queue was full, or the date is not finite
    std::uint64_t failed = 0;    ///< the file refused them (a full disk)
    std::uint64_t deleted = 0;   ///< by the retention
    std::uint64_t queued = 0;    ///< waiting now
    /// Fires, watches and archives that found no room while the file could not be written.
    std::uint64_t dropped = 0;
    /// Why nothing can be written at the moment, as a sentence without its point; empty while all is well.
    std::string failing{};
};

}  // namespace vigil
