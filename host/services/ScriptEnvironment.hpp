#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "host_contract/Readings.hpp"

namespace vigil {

inline constexpr std::size_t kEnvironmentValue = 4 << 10;   ///< bytes of one value; a longer one is cut
inline constexpr std::size_t kEnvironmentSize = 128 << 10;  ///< bytes of all entries; the rest is left out

/// What a script learns of the readings that made it run:
///
///     VIGIL_SITE, VIGIL_MONITOR   the names of the station and of the monitor
///     VIGIL_<key>                 the reading in the user's unit ("21.5"); of a text reading the text
///     VIGIL_<key>_TEXT            the reading as people see it ("21.5 °C")
///
/// Of equal keys the last reading counts. Where two entries would bear one name, the one further up in this
/// list stands. NUL is removed from values; a reading whose key is no name (letters, digits, "_") is left
/// out. Any thread.
std::vector<std::pair<std::string, std::string>> scriptEnvironment(const std::string& site,
                                                                   const std::string& monitor,
                                                                   const Readings& readings);

}  // namespace vigil
