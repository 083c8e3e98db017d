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

/// Whether somebody else than this user and root owns it.
bool isAnothers(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && status.st_uid != geteuid() && status.st_uid != 0;
}

/// Who else may write a file, or put another in its place. What it names is run.
std::optional<Diagnosis> openness(const DoctorSurroundings& here, const std::string& file) {
    const std::string folder = file.substr(0, file.rfind('/'));
    for (const std::string& one : {file, folder}) {
        if (isAnothers(here.root + one))
            return Diagnosis::finding(one + " belongs to another user", "chown it to yourself");
        const auto mode = modeOf(here.root + one);
        if (mode && (*mode & (S_IWGRP | S_IWOTH)) != 0)
            return Diagnosis::finding("others may write to " + one, "chmod go-w " + one);
    }
    return std::nullopt;
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
    if (auto open = openness(here, file)) return *std::move(open);
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
