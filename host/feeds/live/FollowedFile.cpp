#include "host/feeds/live/FollowedFile.hpp"

#include <cerrno>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace vigil {
namespace {

// A pipe that we could write to ourselves never comes to an end when its last writer goes. Where only reading
// is allowed it does, and is opened again.
UniqueFd openWithoutWaiting(const std::string& path) {
    constexpr int kAlways = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode)) {
        UniqueFd both(::open(path.c_str(), O_RDWR | kAlways));
        if (both) return both;
    }
    return UniqueFd(::open(path.c_str(), O_RDONLY | kAlways));
}

}  // namespace

Result<FollowedFile> FollowedFile::open(const std::string& path) {
    UniqueFd own;
    if (path != "-") {
        own = openWithoutWaiting(path);
        if (!own) return Error{path + ": " + std::strerror(errno)};
    }
    struct stat status {};
    if (::fstat(path == "-" ? 0 : own.get(), &status) != 0) return Error{path + ": " + std::strerror(errno)};
    return FollowedFile(path, std::move(own), status);
}

FollowedFile::FollowedFile(std::string path, UniqueFd own, const struct stat& status)
    : m_path(std::move(path)), m_own(std::move(own)), m_status(status) {}

bool FollowedFile::goToEnd() {
    const off_t end = ::lseek(fd(), 0, SEEK_END);
    char last = '\n';
    if (end > 0 && ::pread(fd(), &last, 1, end - 1) != 1) last = '\n';
    return last != '\n';
}

void FollowedFile::goToBegin() {
    ::lseek(fd(), 0, SEEK_SET);
}

FollowedFile::Change FollowedFile::change() const {
    if (isStandardInput()) return Change::None;
    struct stat there {};
    if (::stat(m_path.c_str(), &there) != 0) return Change::Gone;
    if (there.st_dev != m_status.st_dev || there.st_ino != m_status.st_ino) return Change::Replaced;
    if (isOrdinary() && there.st_size < ::lseek(fd(), 0, SEEK_CUR)) return Change::CutOff;
    return Change::None;
}

}  // namespace vigil
