#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

#include "host/command/Doctor_Probes.hpp"
#include "host/settings/SettingsFile.hpp"

// The files that a user writes by hand.

namespace vigil {
namespace {

/// The bits of its mode; nothing where there is no such file.
std::optional<mode_t> modeOf(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return std::nullopt;
    return status.st_mode;
}

Diagnosis cannotRead(const std::string& file) {
    return Diagnosis::finding(file + " cannot be read", "chown it to yourself, or chmod u+r " + file);
}

}  // namespace

Diagnosis settingsProbe(const DoctorSurroundings& here) {
    const std::string& file = here.settingsFile;
    const std::string path = here.root + file;
    const auto mode = modeOf(path);
    if (!mode) return Diagnosis::well("there is no " + file + ", so every setting has its default");
    if (!S_ISREG(*mode)) return Diagnosis::finding(file + " is no file", "move it away");
    if (access(path.c_str(), R_OK) != 0) return cannotRead(file);
    // What it names is run.
    if ((*mode & (S_IWGRP | S_IWOTH)) != 0)
        return Diagnosis::finding("others may write to " + file, "chmod go-w " + file);
    const auto reading = readSettings(path);
    if (!reading)
        return Diagnosis::finding(reading.error().message.substr(here.root.size()), "see to the disk");
    const auto& problems = reading.value().problems;
    if (problems.empty()) return Diagnosis::well(file);
    const std::string more =
        problems.size() > 1 ? " (and " + std::to_string(problems.size() - 1) + " more)" : "";
    return Diagnosis::finding(problemText(file, problems.front()) + more,
                              "mend it, and look again with `vigil settings check`");
}

Diagnosis secretsProbe(const DoctorSurroundings& here) {
    const std::string& file = here.secretsFile;
    const std::string path = here.root + file;
    const auto mode = modeOf(path);
    if (!mode) return Diagnosis::well("there is no " + file + ", so no secret is known");
    if (!S_ISREG(*mode)) return Diagnosis::finding(file + " is no file", "move it away");
    if ((*mode & (S_IRWXG | S_IRWXO)) != 0)
        return Diagnosis::finding("others may read " + file + ", so it is not used", "chmod 600 " + file);
    if (access(path.c_str(), R_OK) != 0) return cannotRead(file);
    return Diagnosis::well(file);
}

}  // namespace vigil
