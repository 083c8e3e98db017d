#pragma once

#include <string>

#include "host/run/SiteStatus.hpp"

namespace vigil {

/// The status in the Prometheus text form, version 0.0.4: every name begins with "vigil_", times are seconds.
std::string metricsText(const SiteStatus& status);

}  // namespace vigil
