#pragma once

#include <string>

#include "host/command/CommandContext.hpp"
#include "host/site/SiteFile.hpp"

namespace vigil {

/// A sentence where this is the default site and monitors of an earlier version stand beside it; else empty.
std::string monitorsFromBefore(const std::string& site);

/// Where another process runs the site: how it comes to know of a change. On the error stream.
void tellRunner(const SiteFile& site, CommandContext& context);

}  // namespace vigil
