#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "host/services/Mailbox.hpp"

namespace vigil {

/// Has the main thread say at a fixed pace that it is alive, also while it waits inside an action that
/// speaks: the word is given by a task that its loops serve at every depth, and by nobody else. Main thread.
class SignsOfLife {
  public:
    using Say = std::function<void()>;

    /// Begins. The mailbox is the caller's and outlives this; `say` is called on its main thread.
    SignsOfLife(Mailbox& mailbox, std::chrono::milliseconds pace, Say say);
    SignsOfLife(const SignsOfLife&) = delete;
    SignsOfLife& operator=(const SignsOfLife&) = delete;
    /// What has been posted and not been served is not said any more.
    ~SignsOfLife();

  private:
    struct Shared;
    void run();

    Mailbox& m_mailbox;
    const std::chrono::milliseconds m_pace;
    const std::shared_ptr<Shared> m_shared;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_over = false;
    std::thread m_thread;  // last: it uses the others
};

}  // namespace vigil
