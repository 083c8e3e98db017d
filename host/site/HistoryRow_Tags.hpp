#pragma once

#include <cstdint>

// The bits of a packed row. They are a file's format: never given another meaning.

namespace vigil {

// The first byte of a row.
inline constexpr std::uint8_t kListed = 1;    ///< places as a list, not as a bit each
inline constexpr std::uint8_t kNumbered = 2;  ///< the feed's number follows
inline constexpr std::uint8_t kRowBits = 3;   ///< all that are in use

// The first byte of an entry: how its time is told,
inline constexpr std::uint8_t kTimeBits = 3;
inline constexpr std::uint8_t kSameTime = 0;   ///< the one told last; at first the notification's
inline constexpr std::uint8_t kNoTime = 1;     ///< it has none
inline constexpr std::uint8_t kTimeStep = 2;   ///< seconds after the one told last
inline constexpr std::uint8_t kWholeTime = 3;  ///< seconds since 2001
// what follows the value,
inline constexpr std::uint8_t kUnitValue = 4;  ///< a unitValue that is not the value
inline constexpr std::uint8_t kStringValue = 8;
inline constexpr std::uint8_t kUnitString = 16;
// and, in the upper three bits, the value's digits behind the point; 7: its bits.
inline constexpr int kDigitsShift = 5;
inline constexpr int kRawValue = 7;

}  // namespace vigil
