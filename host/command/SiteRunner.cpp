#include "host/command/SiteRunner.hpp"

#include <filesystem>

#include "host/run/SiteSocket.hpp"
#include "host/site/MonitorsFile.hpp"

namespace vigil {

std::string monitorsFromBefore(const std::string& site) {
    const std::string file = defaultMonitorsFile();
    std::error_code unknown;
    if (site != SiteFile::defaultFile() || !std::filesystem::exists(file, unknown)) return {};
    return "monitors of an earlier version stand in " + file + "; `vigil site import " + file +
           "` takes them over";
}

void tellRunner(const SiteFile& site, CommandContext& context) {
    if (site.runner() == 0) return;
    const std::string id = std::to_string(site.runner());
    const auto told = SiteSocket::ask(site.path(), "reload");
    context.output.error(told ? "process " + id + " runs this site and takes the change over now"
                              : "process " + id + " runs this site and takes the change over at `kill -HUP " +
                                    id + "`");
}

}  // namespace vigil
