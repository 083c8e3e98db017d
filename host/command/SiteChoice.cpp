#include "host/command/SiteChoice.hpp"

#include <cerrno>
#include <utility>

#include <CLI/Option.hpp>
#include <sys/stat.h>

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

std::string serviceHint(const std::string& site, const std::string& ofService) {
    if (!site.empty()) return {};
    struct stat status {};
    const bool there = ::stat(ofService.c_str(), &status) == 0;
    if (!there && errno != EACCES) return {};
    return std::string(there ? "there is a site of the service" : "the service may have a site") +
           ": --site " + ofService + ", as user vigil";
}

std::unique_ptr<SiteFile> openSite(const std::string& site, Access access, CommandContext& context) {
    auto opened = SiteFile::open(siteOf(site), access);
    if (opened) return std::move(opened).value();
    const bool missing = opened.error().kind == SiteError::Kind::NotThere;
    const std::string hint = missing ? serviceHint(site) : std::string();
    context.output.error(opened.error().message + (hint.empty() ? "" : "; " + hint));
    context.status = statusOf(opened.error().kind);
    return nullptr;
}

}  // namespace vigil
