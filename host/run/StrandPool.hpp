#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "host/run/Strand.hpp"

namespace vigil {

/// The threads that strands share. One that has to wait inside its step for something slow (the main thread,
/// while an action speaks) says so by an `Away`, and another thread takes its place for as long: threads are
/// as many as asked for plus those that are away. They start when they are first needed. Any thread.
class StrandPool {
  public:
    explicit StrandPool(std::size_t threads);
    StrandPool(const StrandPool&) = delete;
    StrandPool& operator=(const StrandPool&) = delete;
    /// Stops.
    ~StrandPool();

    /// The strand has something to do.
    void wake(const std::shared_ptr<Strand>& strand);
    /// What the strand waits for has come.
    void resume(const std::shared_ptr<Strand>& strand);

    /// Ends: steps under way are waited for, none begins. Not from a step.
    void stop();

    /// The calling thread of a pool, which need not be one, gives up its place while this lives.
    class Away {
      public:
        Away();
        Away(const Away&) = delete;
        Away& operator=(const Away&) = delete;
        ~Away();

      private:
        StrandPool* m_pool;
    };

    struct Counts {
        std::size_t threads = 0;  ///< that there are
        std::size_t away = 0;     ///< of these
        std::size_t queued = 0;   ///< strands whose turn has not come
    };
    Counts counts() const;

  private:
    using Lock = std::unique_lock<std::mutex>;
    void work();
    void run(Lock& lock, std::shared_ptr<Strand> strand);
    void enqueue(const std::shared_ptr<Strand>& strand);
    void startThreads();
    std::vector<std::thread> takeEnded();

    const std::size_t m_places;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::shared_ptr<Strand>> m_queue;
    std::map<std::thread::id, std::thread> m_threads;
    std::vector<std::thread> m_ended;  // have left their loop and are to be joined
    std::size_t m_idle = 0;
    std::size_t m_away = 0;
    bool m_stopping = false;
};

}  // namespace vigil
