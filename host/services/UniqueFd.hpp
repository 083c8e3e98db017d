#pragma once

#include <utility>

#include <unistd.h>

namespace vigil {

/// Owns a file descriptor, or none (-1). Not safe to share between threads.
class UniqueFd {
  public:
    UniqueFd() = default;
    explicit UniqueFd(int fd) : m_fd(fd) {}
    UniqueFd(UniqueFd&& other) noexcept : m_fd(std::exchange(other.m_fd, -1)) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept {
        std::swap(m_fd, other.m_fd);
        return *this;
    }
    ~UniqueFd() { reset(); }

    int get() const { return m_fd; }
    explicit operator bool() const { return m_fd >= 0; }
    /// Whoever asks owns it from now on.
    int release() { return std::exchange(m_fd, -1); }
    void reset() {
        // a second close after EINTR could hit a descriptor that another thread has just got
        if (m_fd >= 0) ::close(std::exchange(m_fd, -1));
    }

  private:
    int m_fd = -1;
};

}  // namespace vigil
