#include "host/command/SiteChoice.hpp"

#include <utility>

#include <CLI/Option.hpp>

namespace vigil {
namespace {

ExitStatus statusOf(SiteError::Kind kind) {
    const bool isInput = kind == SiteError::Kind::NotThere || kind == SiteError::Kind::NotASite;
    return isInput ? ExitStatus::BadInput : ExitStatus::Environment;
}

}  // namespace

void addSiteOption(CLI::App& command, std::string& site) {
    command.add_option("--site", site, "The site's file (" + SiteFile::defaultFile() + ")")
        ->type_name("FILE");
}

std::string siteOf(const std::string& site) {
    return site.empty() ? SiteFile::defaultFile() : site;
}

std::unique_ptr<SiteFile> openSite(const std::string& site, Access access, CommandContext& context) {
    auto opened = SiteFile::open(siteOf(site), access);
    if (opened) return std::move(opened).value();
    context.output.error(opened.error().message);
    context.status = statusOf(opened.error().kind);
    return nullptr;
}

}  // namespace vigil
