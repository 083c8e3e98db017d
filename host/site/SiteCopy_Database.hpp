#pragma once

#include <string>

#include "host/site/SiteProgress.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// Copies a database as it is at this moment into an empty file, which then is one file without a log.
Result<Done> copyDatabase(const std::string& from, const std::string& to, const SiteProgress& progress);

}  // namespace vigil
