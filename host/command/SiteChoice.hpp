#pragma once

#include <memory>
#include <optional>
#include <string>

#include <CLI/App.hpp>

#include "host/command/CommandContext.hpp"
#include "host/site/SiteFile.hpp"

namespace vigil {

/// `--site FILE` with the default that everybody uses; empty while nobody gives one.
void addSiteOption(CLI::App& command, std::string& site);

/// Opens the site of `--site`; nothing where that cannot be done, and then the reason is told and the status
/// set.
std::unique_ptr<SiteFile> openSite(const std::string& site, Access access, CommandContext& context);

/// The secret of that name, from the user's file of mode 600.
std::optional<std::string> secretNamed(const std::string& name);

}  // namespace vigil
