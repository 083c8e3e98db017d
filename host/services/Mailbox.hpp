#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include "platform/MainQueue.hpp"
#include "platform/Object.hpp"

namespace vigil {

class World;

/// What the caller of a hand-over gets that was refused before it began.
class HandOverRefused : public std::runtime_error {
  public:
    HandOverRefused();
    ~HandOverRefused() override;
};

/// How deep hand-overs of other threads may stand inside each other on the main thread: each keeps its frames
/// on the stack until all inside it have ended. Further ones wait.
inline constexpr int kHandOverDepth = 8;
/// Posted tasks that may wait. More of them mean that the main thread hangs, and would fill the memory.
inline constexpr std::size_t kPostedTasks = 10000;

/// The main queue: work for the thread that made it, from any thread. A synchronous hand-over waits its turn
/// and is never dropped, but for `close`; posted tasks are bounded. Both carry the world that is open where
/// they come from, a hand-over also the call note, and run one at a time in the order of their arrival.
///
/// The main thread serves by `serveOne` and `serveUntil`: from its main loop, or, inside a task that has to
/// wait for something, from a nested loop (`MainRunLoop`).
class Mailbox : public MainQueue {
  public:
    using Deadline = std::chrono::steady_clock::time_point;
    /// Hears, on the main thread, what a posted task threw. Must not throw itself.
    using TaskFailed = std::function<void(std::exception_ptr)>;

    /// The calling thread is the main thread from now on. Without `taskFailed` an exception of a posted task
    /// ends the program: nobody else could hear of it.
    explicit Mailbox(TaskFailed taskFailed = {});
    /// Closes. Main thread, when no other thread uses the mailbox any more. Tasks not begun are dropped.
    ~Mailbox() override;

    bool isMainThread() const override;
    void dispatchSync(const Task& task) override;
    bool dispatchAsync(Task task) override;

    /// Queues a report that a loop on the main thread waits for: it is taken also where the mailbox is full.
    /// False when it is closed.
    bool dispatchReport(Task task);

    /// Queues a task that begins only when the main thread stands in its main loop, outside every task and
    /// nested loop: removing, closing, quitting. From now until it has run no new hand-over begins. False
    /// when the mailbox is full or closed.
    bool dispatchAtRest(Task task);

    /// Waits until `deadline` for one task that may be served now, and serves it. False when none came. A
    /// deadline in the past serves what is there. Main thread.
    bool serveOne(Deadline deadline);
    /// Serves all that comes until `deadline`. Main thread.
    void serveUntil(Deadline deadline);
    /// The same for a loop inside a task: tasks that wait for rest are not served.
    bool serveOneNested(Deadline deadline);

    /// Lets the main thread return from a `serveOne` or `serveUntil` under way or to come, once. Any thread.
    void wake();

    /// Called on the arriving thread whenever something has arrived, for an event loop that has to be woken.
    /// Must not block, throw or call the mailbox. Main thread, before others post.
    void setWaker(std::function<void()> waker);

    /// Refuses every hand-over that has not begun, now and from now on: its caller gets
    /// `HandOverRefused`. Posted tasks are still taken and served. Any thread.
    void refuseHandOvers();
    /// The same, and takes no posted tasks any more; those that wait are still served. Any thread.
    void close();

    /// The number of hand-overs that stand inside each other on the main thread. Any thread.
    int depth() const;
    /// Hand-overs and tasks that wait. Any thread.
    std::size_t waiting() const;

    /// Keeps the hand-overs with that call note in the mailbox for as long as it lives: while a plug-in's
    /// actions are tried by hand, its own fire must not begin. Main thread.
    class Hold {
      public:
        Hold(Mailbox& mailbox, std::shared_ptr<const Object> note);
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;
        ~Hold();

      private:
        Mailbox& m_mailbox;
        std::shared_ptr<const Object> m_note;
    };

  private:
    struct HandOver;
    struct Posted {
        std::uint64_t arrival;
        Task task;
        World* world;
    };
    enum class Loop { Main, Nested };

    bool serveOne(Deadline deadline, Loop loop);
    std::deque<HandOver*>::iterator nextHandOver();
    bool canServe(Loop loop);
    bool serveReady(std::unique_lock<std::mutex>& lock, Loop loop);
    void run(std::unique_lock<std::mutex>& lock, HandOver& handOver);
    void run(std::unique_lock<std::mutex>& lock, Posted posted);
    bool post(std::deque<Posted>& queue, Task task, std::size_t most);
    void arrived();

    const std::thread::id m_mainThread;
    const TaskFailed m_taskFailed;
    std::function<void()> m_waker;

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::uint64_t m_arrivals = 0;
    std::deque<HandOver*> m_handOvers;  // each stands on the stack of its waiting caller
    std::deque<Posted> m_posted;
    std::deque<Posted> m_atRest;
    std::vector<const Object*> m_held;
    int m_depth = 0;    // hand-overs that have begun and not ended
    int m_nesting = 0;  // tasks of any kind and nested loops on the main thread's stack
    bool m_woken = false;
    bool m_handOversRefused = false;
    bool m_closed = false;
};

}  // namespace vigil
