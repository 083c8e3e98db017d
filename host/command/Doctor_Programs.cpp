#include <algorithm>
#include <filesystem>

#include <unistd.h>

#include "host/command/Doctor_Probes.hpp"
#include "host/kit/MonitorModule.hpp"
#include "host/services/ScriptRunner.hpp"

// What belongs to Vigil's own installation, and the shell that scripts are run with.

namespace vigil {
namespace {

constexpr const char* kInstallAgain = "install Vigil again, or build it anew";

Diagnosis withoutFolder() {
    return Diagnosis::unknown("the system does not tell where this program is", "call it by its whole path");
}

}  // namespace

bool isProgram(const std::string& path) {
    std::error_code unknown;
    return std::filesystem::is_regular_file(path, unknown) && access(path.c_str(), X_OK) == 0;
}

std::optional<std::string> programPath(const DoctorSurroundings& here, const std::string& name) {
    if (name.find('/') != std::string::npos)
        return isProgram(here.root + name) ? std::optional(name) : std::nullopt;
    const std::string path = here.variable("PATH").value_or("/usr/local/bin:/usr/bin:/bin");
    for (std::size_t begin = 0; begin <= path.size();) {
        const std::size_t end = std::min(path.find(':', begin), path.size());
        const std::string program = path.substr(begin, end - begin) + "/" + name;
        if (end > begin && isProgram(here.root + program)) return program;
        begin = end + 1;
    }
    return std::nullopt;
}

Diagnosis moduleProbe(const DoctorSurroundings& here) {
    if (here.programFolder.empty()) return withoutFolder();
    if (const auto loaded = loadMonitorModule(here.programFolder); !loaded)
        return Diagnosis::finding(loaded.error().message, kInstallAgain);
    return Diagnosis::well("the monitor's module loads");
}

Diagnosis helperProbe(const DoctorSurroundings& here) {
    if (here.programFolder.empty()) return withoutFolder();
    const std::string path = helperPath(here.programFolder);
    if (!isProgram(path))
        return Diagnosis::finding(
            "there is no program " + path + ", so no script can run and nothing can be heard", kInstallAgain);
    // what it becomes for the work that needs large libraries
    const std::string media = std::filesystem::path(path).parent_path() / "vigil-helper-media";
    if (!isProgram(media))
        return Diagnosis::finding(
            "there is no program " + media + ", so nothing can be heard and no mail can be sent",
            kInstallAgain);
    return Diagnosis::well(path);
}

Diagnosis shellProbe(const DoctorSurroundings& here) {
    if (isProgram(here.root + "/bin/sh")) return Diagnosis::well("/bin/sh");
    return Diagnosis::finding("/bin/sh is missing, and scripts without a #! line are run by it",
                              "install a shell, for instance the package dash");
}

}  // namespace vigil
