#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace vigil {

/// One thread that does jobs in their order: what may wait for a disk. Main thread.
class Background {
  public:
    Background();
    Background(const Background&) = delete;
    Background& operator=(const Background&) = delete;
    /// Drops what has not begun, and joins.
    ~Background();

    void run(std::function<void()> job);

  private:
    void work();

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<std::function<void()>> m_jobs;
    bool m_ending = false;
    std::thread m_thread;
};

}  // namespace vigil
