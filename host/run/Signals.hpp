#pragma once

#include <functional>
#include <thread>

namespace vigil {

/// Blocks the process's signals to end and to reload, so that they wait for `Signals`. On the main thread
/// before any other thread is made, since each inherits what is blocked.
void blockSignals();

/// Takes those signals on a thread of its own, those that came since they were blocked included, for as long
/// as it lives. Made behind whatever it tells, so that it goes first.
class Signals {
  public:
    /// Called on the signals' thread with SIGTERM, SIGINT or SIGHUP.
    using Came = std::function<void(int signal)>;

    explicit Signals(Came came);
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;
    ~Signals();

  private:
    std::thread m_thread;
};

}  // namespace vigil
