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

Diagnosis moduleProbe(const DoctorSurroundings& here) {
    if (here.programFolder.empty()) return withoutFolder();
    if (const auto loaded = loadMonitorModule(here.programFolder); !loaded)
        return Diagnosis::finding(loaded.error().message, kInstallAgain);
    return Diagnosis::well("the monitor's module loads");
}

Diagnosis helperProbe(const DoctorSurroundings& here) {
    if (here.programFolder.empty()) return withoutFolder();
    const std::string path = helperPath(here.programFolder);
    if (isProgram(path)) return Diagnosis::well(path);
    return Diagnosis::finding("there is no program " + path + ", so no script can run", kInstallAgain);
}

Diagnosis shellProbe(const DoctorSurroundings& here) {
    if (isProgram(here.root + "/bin/sh")) return Diagnosis::well("/bin/sh");
    return Diagnosis::finding("/bin/sh is missing, and scripts without a #! line are run by it",
                              "install a shell, for instance the package dash");
}

}  // namespace vigil
