#pragma once

#include "platform/Date.hpp"
#include "platform/World.hpp"

// The machine's clock and time zone. Any thread.

namespace vigil {

/// The moment by the machine's clock.
Date systemNow();

/// The date in the machine's zone, or in UTC; the fraction is dropped. All zeros where the date is not finite
/// or so far away that no year holds it.
LocalTime systemLocalTime(Date date);
LocalTime utcTime(Date date);

}  // namespace vigil
