#include "host/site/HistoryLock.hpp"

#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace vigil {
namespace {

constexpr int kClosed = -1;
constexpr mode_t kOwnerOnly = 0600;

}  // namespace

Result<HistoryLock> HistoryLock::take(const std::string& file) {
    const std::string path = file + "-lock";
    const int descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, kOwnerOnly);
    if (descriptor < 0) return Error{"cannot write " + path + ": " + std::generic_category().message(errno)};
    HistoryLock lock(descriptor);
    if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0) return lock;
    return Error{file + " is being written by another process"};
}

HistoryLock::HistoryLock(HistoryLock&& other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, kClosed)) {}

HistoryLock::~HistoryLock() {
    if (m_descriptor != kClosed) ::close(m_descriptor);
}

}  // namespace vigil
