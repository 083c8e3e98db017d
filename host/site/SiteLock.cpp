#include "host/site/SiteLock.hpp"

#include <cerrno>
#include <charconv>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace vigil {
namespace {

constexpr std::size_t kLongestId = 20;

std::string lockPath(const std::string& site) {
    return site + "-lock";
}

long readId(int descriptor) {
    char text[kLongestId];
    const ssize_t count = ::pread(descriptor, text, sizeof text, 0);
    long id = 0;
    if (count > 0) std::from_chars(text, text + count, id);
    return id;
}

/// Of the whole file, held by the open file and not by the process, so that it lasts as long as its
/// descriptor.
struct flock writeLock() {
    struct flock whole {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    return whole;
}

SiteError locked(const std::string& site, long id) {
    const std::string who = id > 0 ? "process " + std::to_string(id) : std::string("another process");
    return {.kind = SiteError::Kind::Locked,
            .message = site + ": " + who + " runs this site; end it first, or ask it (`vigil status`)"};
}

}  // namespace

Result<std::unique_ptr<SiteLock>, SiteError> SiteLock::take(const std::string& site) {
    const std::string path = lockPath(site);
    const int descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor < 0)
        return SiteError{
            .kind = SiteError::Kind::Environment,
            .message = path + ": " + std::strerror(errno) + "; the site needs this file to be locked"};
    auto lock = std::make_unique<SiteLock>(descriptor);
    struct flock whole = writeLock();
    while (::fcntl(descriptor, F_OFD_SETLK, &whole) != 0) {
        if (errno == EINTR) continue;
        const int failure = errno;
        const long id = readId(descriptor);
        lock->m_descriptor = -1;  // not ours: the id inside stays
        ::close(descriptor);
        if (failure == EAGAIN || failure == EACCES) return locked(site, id);
        return SiteError{.kind = SiteError::Kind::Environment,
                         .message = path + ": " + std::strerror(failure) + "; this disk takes no locks"};
    }
    const std::string id = std::to_string(::getpid()) + "\n";
    // The id only tells people who holds the lock; without it they read "another process".
    if (::ftruncate(descriptor, 0) == 0) static_cast<void>(::pwrite(descriptor, id.data(), id.size(), 0));
    return lock;
}

SiteLock::~SiteLock() {
    if (m_descriptor < 0) return;
    static_cast<void>(!::ftruncate(m_descriptor, 0));  // what stays is told only while the lock is held
    ::close(m_descriptor);
}

long SiteLock::holder(const std::string& site) {
    const int descriptor = ::open(lockPath(site).c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) return 0;
    // Asked, never taken: even a shared lock for a moment would turn away a service that starts in it.
    struct flock whole = writeLock();
    const bool held = ::fcntl(descriptor, F_OFD_GETLK, &whole) == 0 && whole.l_type != F_UNLCK;
    const long id = held ? readId(descriptor) : 0;
    ::close(descriptor);
    return id;
}

}  // namespace vigil
