#pragma once

#include <functional>

#include "platform/Date.hpp"
#include "platform/Export.hpp"

namespace vigil {

/// Work for the main thread, handed over from any thread.
class VIGIL_KIT MainQueue {
  public:
    using Task = std::function<void()>;
    virtual ~MainQueue();

    virtual bool isMainThread() const = 0;

    /// Runs the task on the main thread and returns when it has ended; on the main thread it runs at once.
    /// What the task throws is thrown again here. Throws `std::runtime_error` when the queue is closing and
    /// the task has not begun.
    virtual void dispatchSync(const Task& task) = 0;

    /// Queues the task and returns. False when the queue is full or closing; the task is then not kept.
    virtual bool dispatchAsync(Task task) = 0;
};

/// The event loop of the thread that asks for it.
class VIGIL_KIT RunLoop {
  public:
    virtual ~RunLoop();
    /// Serves what arrives at this thread until `date`, or until something has been served; may return early.
    virtual void runUntil(Date date) = 0;
};

}  // namespace vigil
