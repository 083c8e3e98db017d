#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

#include "host/command/Doctor_Probes.hpp"

// Folders that Vigil writes to and runs from, and the time zone.

namespace vigil {
namespace {

namespace fs = std::filesystem;

/// Whether others than the owner may write there.
bool isOpenToOthers(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && (status.st_mode & (S_IWGRP | S_IWOTH)) != 0;
}

/// The folder itself, or the nearest one above it that is there.
std::string nearestThatExists(std::string path) {
    std::error_code unknown;
    while (!fs::exists(path, unknown) && path.find('/', 1) != std::string::npos)
        path.resize(path.rfind('/'));
    return path;
}

/// A folder of one's own is given to oneself; the system's are left as they are.
std::string folderRemedy(const DoctorSurroundings& here, const std::string& nearest) {
    if (here.settings.site.file.empty() || nearest == here.root + here.siteFolder)
        return "chown " + nearest.substr(here.root.size()) + " to yourself";
    return "make " + here.siteFolder + " for yourself, or set another site.file in " + here.settingsFile;
}

bool isZoneRule(const std::string& zone) {
    // "CET-1CEST", "<+03>-3": a name of three letters or more, or one in angle brackets, and an offset
    std::size_t at = 0;
    if (zone.starts_with('<'))
        at = zone.find('>') + 1;  // 0 where there is none
    else
        while (at < zone.size() && std::isalpha(static_cast<unsigned char>(zone[at])))
            ++at;
    if (at < 3) return false;
    if (at < zone.size() && (zone[at] == '+' || zone[at] == '-')) ++at;
    return at < zone.size() && std::isdigit(static_cast<unsigned char>(zone[at]));
}

}  // namespace

Diagnosis siteFolderProbe(const DoctorSurroundings& here) {
    if (here.siteFolder.empty())
        return Diagnosis::unknown("neither XDG_DATA_HOME nor HOME is set", "set HOME to your own folder");
    const std::string path = here.root + here.siteFolder;
    const std::string nearest = nearestThatExists(path);
    std::error_code unknown;
    if (!fs::is_directory(nearest, unknown))
        return Diagnosis::finding(
            here.siteFolder + " cannot be made, since " + nearest.substr(here.root.size()) + " is no folder",
            "move that file away");
    if (access(nearest.c_str(), W_OK | X_OK) != 0)
        return Diagnosis::finding(here.siteFolder + " cannot be written", folderRemedy(here, nearest));
    if (nearest != path) return Diagnosis::well(here.siteFolder + " will be made with the first site");
    if (isOpenToOthers(path))
        return Diagnosis::finding("others may write to " + here.siteFolder, "chmod go-w " + here.siteFolder);
    return Diagnosis::well(here.siteFolder);
}

Diagnosis scriptsFolderProbe(const DoctorSurroundings& here) {
    const std::string path = here.root + here.scriptsFolder;
    std::error_code failed;
    if (!fs::exists(path, failed))
        return Diagnosis::finding("there is no folder " + here.scriptsFolder,
                                  "mkdir -p " + here.scriptsFolder);
    if (!fs::is_directory(path, failed))
        return Diagnosis::finding(here.scriptsFolder + " is no folder", "move that file away");
    if (access(path.c_str(), R_OK | X_OK) != 0)
        return Diagnosis::finding(here.scriptsFolder + " cannot be read", "chmod u+rx " + here.scriptsFolder);
    if (isOpenToOthers(path))
        return Diagnosis::finding("others may put scripts into " + here.scriptsFolder,
                                  "chmod go-w " + here.scriptsFolder);
    return Diagnosis::well(here.scriptsFolder);
}

Diagnosis timeZoneProbe(const DoctorSurroundings& here) {
    std::error_code failed;
    const auto set = here.variable("TZ");
    if (!set) {
        const std::string local = here.root + "/etc/localtime";
        if (access(local.c_str(), R_OK) != 0)
            return Diagnosis::finding("/etc/localtime is missing, so times of day are in UTC",
                                      "sudo timedatectl set-timezone Europe/Berlin (or where you are)");
        const std::string target = fs::read_symlink(local, failed).string();
        constexpr std::string_view kZones = "/zoneinfo/";
        const std::size_t place = target.find(kZones);
        return Diagnosis::well(place == std::string::npos ? "as /etc/localtime says"
                                                          : target.substr(place + kZones.size()));
    }
    const std::string zone = set->starts_with(':') ? set->substr(1) : *set;
    const std::string file = zone.starts_with('/') ? zone : "/usr/share/zoneinfo/" + zone;
    const bool isFile = !zone.empty() && fs::is_regular_file(here.root + file, failed);
    if (isFile || isZoneRule(zone) || zone == "UTC" || zone == "GMT")
        return Diagnosis::well(zone + ", as TZ says");
    return Diagnosis::finding("TZ is " + *set + ", which no file in /usr/share/zoneinfo describes",
                              "unset TZ, or set it to a zone like Europe/Berlin (package tzdata)");
}

}  // namespace vigil
