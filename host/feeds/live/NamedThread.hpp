#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace vigil {

/// A thread that bears a name (at most 15 bytes) and takes no signals: those of the process are for the
/// threads that want them. One owner.
class NamedThread {
  public:
    NamedThread() = default;
    NamedThread(const char* name, std::function<void()> work);
    NamedThread(NamedThread&&) noexcept = default;
    NamedThread& operator=(NamedThread&&) = delete;
    /// Waits for the end of its work.
    ~NamedThread();

    /// Waits for the end of its work, at most until then. Work that does not end (the system looks up a name,
    /// which nobody can stop) is left to itself: it must own what it touches. Gives whether it has ended.
    bool endBy(std::chrono::steady_clock::time_point deadline);

  private:
    struct Ended;
    std::shared_ptr<Ended> m_ended;
    std::thread m_thread;
};

}  // namespace vigil
