#pragma once

#include "host/desktop/Card.hpp"
#include "host/run/SiteStatus.hpp"

// What is told of stations and monitors in one line.

namespace vigil {

/// "watching", "waiting until 14:05:31", "not active", "cannot be judged: no reading windChill"
Card cardOf(const MonitorStatus& status, Date now);
/// "live, data 2 s old", "silent for 12 min", "never seen", "tries again: …"
Card cardOf(const StationStatus& status, Date now);

}  // namespace vigil
