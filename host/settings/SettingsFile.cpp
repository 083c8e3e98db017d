#include "host/settings/SettingsFile.hpp"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

#include <pwd.h>
#include <unistd.h>

namespace vigil {
namespace {

namespace fs = std::filesystem;

std::string homeFolder() {
    if (const char* home = std::getenv("HOME"); home && *home) return home;
    const passwd* user = getpwuid(getuid());
    return user && user->pw_dir ? user->pw_dir : "";
}

Error cannotRead(const std::string& path, const std::string& why) {
    return Error{path + " cannot be read: " + why};
}

}  // namespace

std::string defaultSettingsFile() {
    const char* settings = std::getenv("XDG_CONFIG_HOME");
    // The rule for these folders: a path that is not absolute counts as none.
    if (settings && *settings == '/') return std::string(settings) + "/vigil/vigil.toml";
    return homeFolder() + "/.config/vigil/vigil.toml";
}

Result<SettingsReading> readSettings(const std::string& path) {
    std::error_code failed;
    const fs::file_status status = fs::status(path, failed);
    if (status.type() == fs::file_type::not_found) return SettingsReading{};
    if (status.type() == fs::file_type::none) return cannotRead(path, failed.message());
    // A pipe would make the reader wait.
    if (status.type() != fs::file_type::regular) return cannotRead(path, "it is no file");
    std::ifstream file(path, std::ios::binary);
    std::string text(kMostSettingsBytes + 1, '\0');
    if (!file) return cannotRead(path, std::strerror(errno));
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (file.bad()) return cannotRead(path, std::strerror(errno));
    text.resize(static_cast<std::size_t>(file.gcount()));
    const std::string folder = fs::absolute(path).parent_path().string();
    SettingsReading reading = parseSettings(text, folder, homeFolder());
    reading.isThere = true;
    return reading;
}

std::string problemText(const std::string& path, const SettingsProblem& problem) {
    return path + ":" + std::to_string(problem.place.line) + ":" + std::to_string(problem.place.column) +
           ": " + problem.says;
}

}  // namespace vigil
