#pragma once

#include <string>

#include "host/run/SiteStatus.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// The status as one JSON object (docs/formats/status.md). Texts that are not UTF-8 are repaired.
std::string statusJson(const SiteStatus& status);
/// And back, without the histograms. An error where it is none.
Result<SiteStatus> statusFromJson(const std::string& text);

}  // namespace vigil
