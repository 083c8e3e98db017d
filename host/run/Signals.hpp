#pragma once

#include <functional>
#include <thread>

namespace vigil {

/// Takes the process's signals to end and to reload on a thread of its own. Made on the main thread before
/// any other thread is, since each inherits what is blocked.
class Signals {
  public:
    /// Called on the signals' thread with SIGTERM, SIGINT or SIGHUP.
    using Came = std::function<void(int signal)>;

    /// Blocks the signals.
    Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;
    ~Signals();

    /// Begins to tell of them, those that came since they were blocked included.
    void listen(Came came);

  private:
    std::thread m_thread;
};

}  // namespace vigil
