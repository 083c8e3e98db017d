#include "host/site/FileAccess.hpp"

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vigil {
namespace {

constexpr mode_t kModeBits = 07777;

std::string userName(uid_t user) {
    constexpr std::size_t kMostBytes = 4096;
    std::array<char, kMostBytes> room{};
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(user, &entry, room.data(), room.size(), &found) == 0 && found) return entry.pw_name;
    return std::to_string(user);
}

}  // namespace

std::optional<std::string> accessObstacle(const std::string& file) {
    if (::access(file.c_str(), R_OK) == 0 || errno != EACCES) return std::nullopt;
    std::filesystem::path place(file);
    struct stat status {};
    // The first thing above that can be looked at is the one that hides the rest.
    while (::stat(place.c_str(), &status) != 0) {
        const auto above = place.parent_path();
        if (above.empty() || above == place) return std::nullopt;
        place = above;
    }
    std::array<char, 8> mode{};
    std::snprintf(mode.data(), mode.size(), "%o", static_cast<unsigned>(status.st_mode & kModeBits));
    return place.string() + " belongs to user " + userName(status.st_uid) + ", mode " + mode.data() +
           "; run this as that user";
}

}  // namespace vigil
