#include "host/site/SiteFiles.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vigil {
namespace {

namespace fs = std::filesystem;

Error failed(const std::string& path, int failure) {
    return {path + ": " + std::strerror(failure)};
}

std::string folderOf(const std::string& path) {
    const std::string folder = fs::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

Result<Done> syncFile(const std::string& path, int flags) {
    const int descriptor = ::open(path.c_str(), flags | O_CLOEXEC);
    if (descriptor < 0) return failed(path, errno);
    const int failure = ::fsync(descriptor) == 0 ? 0 : errno;
    ::close(descriptor);
    if (failure != 0 && failure != EINVAL) return failed(path, failure);  // some disks sync no folder
    return Done{};
}

}  // namespace

Result<Done> makeFolderOf(const std::string& path) {
    std::error_code problem;
    const fs::path folder = folderOf(path);
    if (fs::is_directory(folder, problem)) return Done{};
    const mode_t before = ::umask(077);
    fs::create_directories(folder, problem);
    ::umask(before);
    if (problem) return Error{folder.string() + ": " + problem.message()};
    return Done{};
}

FreshFile::FreshFile(std::string path)
    : m_path(std::move(path)), m_fresh(m_path + ".new-" + std::to_string(::getpid())) {}

FreshFile::~FreshFile() {
    removeDatabase(m_fresh);
}

Result<Done> FreshFile::make() const {
    removeDatabase(m_fresh);
    const int descriptor = ::open(m_fresh.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (descriptor < 0) return failed(m_fresh, errno);
    ::close(descriptor);
    return Done{};
}

Result<Done> FreshFile::takePlace(bool ofAnother) const {
    if (auto synced = syncFile(m_fresh, O_RDWR); !synced) return synced;
    const unsigned flags = ofAnother ? 0U : static_cast<unsigned>(RENAME_NOREPLACE);
    int outcome = ::renameat2(AT_FDCWD, m_fresh.c_str(), AT_FDCWD, m_path.c_str(), flags);
    // Some disks cannot promise to replace nothing; a link can, since it fails where the name is taken.
    if (outcome != 0 && !ofAnother && (errno == EINVAL || errno == ENOSYS))
        outcome = ::link(m_fresh.c_str(), m_path.c_str());
    if (outcome != 0 && errno == EEXIST) return Error{m_path + ": " + std::string(kIsThere)};
    if (outcome != 0) return failed(m_path, errno);
    return syncFile(folderOf(m_path), O_RDONLY | O_DIRECTORY);
}

void removeDatabase(const std::string& path) {
    for (const char* part : {"", "-wal", "-shm", "-journal", "-lock"})
        ::unlink((path + part).c_str());
}

}  // namespace vigil
