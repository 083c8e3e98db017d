#pragma once

#include <memory>
#include <optional>
#include <string>

#include <CLI/App.hpp>

#include "host/command/CommandContext.hpp"
#include "host/site/SiteFile.hpp"

namespace vigil {

/// `--site FILE`, for every command that uses a site. Left empty where it is not given.
void addSiteOption(CLI::App& command, std::string& site);

/// The path that is meant: as given, or that of the settings, or the user's own site. Nothing where that
/// takes settings which are wrong; then that is told and the status set.
std::optional<std::string> siteOf(const std::string& site, CommandContext& context);

/// Where the service of a machine keeps its site.
inline constexpr const char* kServiceSite = "/var/lib/vigil/home.vigilsite";

/// Where the user has no site of their own but the service has one, how to use that; else empty.
std::string serviceHint(const std::string& site, const std::string& ofService = kServiceSite);

/// Opens the site of `--site`; nothing where that cannot be done, and then the reason is told and the status
/// set.
std::unique_ptr<SiteFile> openSite(const std::string& site, Access access, CommandContext& context);

}  // namespace vigil
