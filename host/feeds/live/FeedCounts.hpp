#pragma once

#include <cstdint>

namespace vigil {

/// What a station's feed has done since it was added.
struct FeedCounts {
    std::uint64_t messages = 0;   ///< brought to the sink
    std::uint64_t bytes = 0;      ///< of these messages
    std::uint64_t leftOut = 0;    ///< too long, or not of a form that could be brought
    std::uint64_t unclaimed = 0;  ///< uploads at the station's port that no station takes
    std::uint64_t restarts = 0;   ///< programs, connections and files begun again
};

}  // namespace vigil
