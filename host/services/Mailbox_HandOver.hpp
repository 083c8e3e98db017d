#pragma once

#include <condition_variable>
#include <exception>
#include <memory>

#include "host/services/Mailbox.hpp"
#include "platform/CallNote.hpp"
#include "platform/World.hpp"

namespace vigil {

/// A synchronous hand-over, on the stack of the thread that waits for it: nobody may touch it once `ended` is
/// set and the mailbox's mutex is free. All but the task is guarded by that mutex.
struct Mailbox::HandOver {
    explicit HandOver(const Task& toRun) : task(toRun), note(CallNote::current()), world(World::current()) {}

    const Task& task;
    const std::shared_ptr<const Object> note;
    World* const world;
    std::uint64_t arrival = 0;
    std::condition_variable changed;
    bool ended = false;
    std::exception_ptr failure;

    void refuse() {
        failure = std::make_exception_ptr(HandOverRefused());
        end();
    }

    void end() {
        ended = true;
        changed.notify_one();  // under the mutex: the waiting thread takes this object with it
    }
};

}  // namespace vigil
