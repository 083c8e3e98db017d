#include "host/command/SiteChoice.hpp"

#include <cerrno>
#include <utility>

#include <CLI/Option.hpp>
#include <sys/stat.h>

#include "host/command/SettingsChoice.hpp"

namespace vigil {
namespace {

ExitStatus statusOf(SiteError::Kind kind) {
    const bool isInput = kind == SiteError::Kind::NotThere || kind == SiteError::Kind::NotASite;
    return isInput ? ExitStatus::BadInput : ExitStatus::Environment;
}

}  // namespace

void addSiteOption(CLI::App& command, std::string& site) {
    command
        .add_option("--site", site,
                    "The site's file (as the settings say, or " + SiteFile::defaultFile() + ")")
        ->type_name("FILE");
}

std::optional<std::string> siteOf(const std::string& site, CommandContext& context) {
    if (!site.empty()) return site;
    auto settings = settingsOf(context);
    if (!settings) return std::nullopt;
    return effective(std::move(*settings)).site.file;
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
    const auto path = siteOf(site, context);
    if (!path) return nullptr;
    auto opened = SiteFile::open(*path, access);
    if (opened) return std::move(opened).value();
    const bool missing = opened.error().kind == SiteError::Kind::NotThere;
    const std::string hint = missing ? serviceHint(site) : std::string();
    context.output.error(opened.error().message + (hint.empty() ? "" : "; " + hint));
    context.status = statusOf(opened.error().kind);
    return nullptr;
}

}  // namespace vigil
