#include <filesystem>
#include <string>

#include "host/command/Doctor_Probes.hpp"
#include "host/command/MonitorSite.hpp"
#include "host/command/ScriptRows.hpp"
#include "host/kit/MonitorModule.hpp"
#include "host/services/ScriptRunner.hpp"
#include "host/site/SiteFile.hpp"

// Whether the scripts that the site's monitors run are there.

namespace vigil {
namespace {

constexpr std::size_t kMostNamed = 5;

/// Names of scripts that are missing, each with the monitor that runs it.
struct Scripts {
    std::size_t rows = 0;
    std::vector<std::string> missing{};
};

Result<Scripts> scriptsOf(const SiteFile& site, const DoctorSurroundings& here) {
    const auto plugIns = site.plugIns();
    if (!plugIns) return plugIns.error();
    Scripts found;
    for (const PlugInRecord& one : plugIns.value()) {
        const auto monitor =
            OpenMonitor::open({.title = one.title, .archive = one.archive}, helperPath(here.programFolder));
        if (!monitor) return monitor.error();
        for (const std::string& name : scriptNames(*monitor.value())) {
            ++found.rows;
            if (name.empty())
                found.missing.push_back("\"" + one.title + "\" names none");
            else if (!hasScript(here.root + here.scriptsFolder, name))
                found.missing.push_back(name + " (\"" + one.title + "\")");
        }
    }
    return found;
}

}  // namespace

Diagnosis scriptRowsProbe(const DoctorSurroundings& here) {
    std::error_code unknown;
    if (here.siteFile.empty() || !std::filesystem::exists(here.root + here.siteFile, unknown))
        return Diagnosis::well("no site yet that would run any");
    if (const auto loaded = loadMonitorModule(here.programFolder); !loaded)
        return Diagnosis::unknown(loaded.error().message, "see the module");
    const auto site = SiteFile::open(here.root + here.siteFile, Access::Read);
    if (!site) return Diagnosis::unknown(site.error().message, "vigil site check");
    const auto found = scriptsOf(*site.value(), here);
    if (!found) return Diagnosis::unknown(found.error().message, "vigil site check");
    const std::vector<std::string>& missing = found.value().missing;
    if (missing.empty())
        return Diagnosis::well(std::to_string(found.value().rows) +
                               (found.value().rows == 1 ? " script row" : " script rows") +
                               ", and every script is there");
    std::string text = "missing: ";
    for (std::size_t i = 0; i < missing.size() && i < kMostNamed; ++i)
        text += (i == 0 ? "" : ", ") + missing[i];
    if (missing.size() > kMostNamed) text += " and " + std::to_string(missing.size() - kMostNamed) + " more";
    return Diagnosis::finding(text, "put them into " + here.scriptsFolder + ", or edit those monitors");
}

}  // namespace vigil
