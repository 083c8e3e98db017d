#pragma once

#include <cstddef>
#include <limits>

#include "host/site/SiteSql.hpp"
#include "platform/Date.hpp"

// What a site file forgets in time: completed fires and ended effects. What is open stays however old it is.

namespace vigil {

/// The highest id that a fire or effect has ever had.
extern const char* const kHighestId;

bool hasOlder(SQLite::Database& database, Date before);

/// How many rows went: at most `most` fires and as many effects, the oldest first. Inside a transaction.
std::size_t forgetOlder(SQLite::Database& database, Date before, int most = std::numeric_limits<int>::max());

}  // namespace vigil
