#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include "platform/MainQueue.hpp"

namespace vigil {

/// A main queue for tests, in one of two forms. Inline: the test's thread is the main thread for as long as
/// `setMainThread` says so; a hand-over runs where it is asked for and counts as the main thread meanwhile;
/// posted tasks wait for `runPosted`. Threaded: a thread of the queue's own is the main thread. Any thread.
class FakeMainQueue : public MainQueue {
  public:
    enum class Form { Inline, Threaded };

    explicit FakeMainQueue(Form form);
    ~FakeMainQueue() override;

    bool isMainThread() const override;
    /// Carries the world and the call note of the posting thread.
    void dispatchSync(const Task& task) override;
    bool dispatchAsync(Task task) override;

    /// Inline form: whether the thread that asks is the main thread outside a hand-over; true at first.
    void setMainThread(bool isMain);
    /// Refuses hand-overs and tasks from now on, as a queue does while it closes.
    void setClosing(bool closing);
    /// Runs the posted tasks of the inline form; waits for those of the threaded one. How many have run.
    int runPosted();

    int handOvers() const;    ///< calls of `dispatchSync` that were served
    int postedTasks() const;  ///< calls of `dispatchAsync` that were taken

  private:
    void serve();

    const Form m_form;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Task> m_posted;
    int m_running = 0;
    int m_served = 0;
    bool m_isMain = true;
    bool m_closing = false;
    bool m_ending = false;
    int m_handOvers = 0;
    int m_taken = 0;
    std::thread m_thread;
};

}  // namespace vigil
