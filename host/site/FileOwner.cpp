#include "host/site/FileOwner.hpp"

#include <cerrno>
#include <cstdio>
#include <filesystem>

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vigil {
namespace {

std::string nameOf(uid_t user) {
    char bytes[4096];
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(user, &entry, bytes, sizeof bytes, &found) != 0 || !found) return std::to_string(user);
    return found->pw_name;
}

std::string owner(const struct stat& status) {
    char mode[8];
    std::snprintf(mode, sizeof mode, "%o", static_cast<unsigned>(status.st_mode) & 07777U);
    if (status.st_uid == ::geteuid())
        return std::string("belongs to you, mode ") + mode + "; chmod gives you the right to use it";
    return "belongs to user " + nameOf(status.st_uid) + ", mode " + mode + "; run this as that user";
}

}  // namespace

std::optional<std::string> notAllowed(const std::string& path, bool writing) {
    const int wanted = writing ? R_OK | W_OK : R_OK;
    if (::faccessat(AT_FDCWD, path.c_str(), wanted, AT_EACCESS) == 0 || errno != EACCES) return std::nullopt;
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0) return "it " + owner(status);
    std::filesystem::path folder = std::filesystem::path(path).parent_path();
    while (!folder.empty() && folder != folder.root_path() && ::stat(folder.c_str(), &status) != 0)
        folder = folder.parent_path();
    if (folder.empty() || ::stat(folder.c_str(), &status) != 0) return std::nullopt;
    return "its folder " + folder.string() + " " + owner(status);
}

}  // namespace vigil
