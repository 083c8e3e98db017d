#include <algorithm>
#include <cassert>
#include <optional>
#include <utility>

#include "host/services/Mailbox_HandOver.hpp"

// The main thread's side of the mailbox.

namespace vigil {
namespace {

/// Opens the world that was open where a task came from, or none.
class CarriedWorld {
  public:
    explicit CarriedWorld(World* world) {
        if (world) m_scope.emplace(*world);
    }

  private:
    std::optional<World::Scope> m_scope;
};

}  // namespace

bool Mailbox::serveOne(Deadline deadline) {
    return serveOne(deadline, Loop::Main);
}

bool Mailbox::serveOneNested(Deadline deadline) {
    return serveOne(deadline, Loop::Nested);
}

void Mailbox::serveUntil(Deadline deadline) {
    while (true) {
        if (!serveOne(deadline)) return;
        if (std::chrono::steady_clock::now() >= deadline) return;
    }
}

bool Mailbox::serveOne(Deadline deadline, Loop loop) {
    assert(isMainThread());
    std::unique_lock lock(m_mutex);
    // A main loop that is entered inside a task is a nested one, whatever its caller calls it.
    if (m_nesting > 0) loop = Loop::Nested;
    const int nested = loop == Loop::Nested ? 1 : 0;
    m_nesting += nested;
    const auto ready = [&] { return m_woken || canServe(loop); };
    // Until a far deadline the wait is done in pieces: the clock's end is too far for some system calls.
    while (!ready()) {
        const auto now = std::chrono::steady_clock::now();
        if (now >= deadline) break;
        m_changed.wait_until(lock, std::min(deadline, now + std::chrono::hours(1)), ready);
    }
    const bool served = serveReady(lock, loop);
    if (!served) m_woken = false;
    m_nesting -= nested;
    return served;
}

std::deque<Mailbox::HandOver*>::iterator Mailbox::nextHandOver() {
    if (m_depth >= kHandOverDepth || !m_atRest.empty()) return m_handOvers.end();
    return std::find_if(m_handOvers.begin(), m_handOvers.end(), [this](const HandOver* handOver) {
        return std::find(m_held.begin(), m_held.end(), handOver->note.get()) == m_held.end();
    });
}

bool Mailbox::canServe(Loop loop) {
    if (!m_posted.empty() || nextHandOver() != m_handOvers.end()) return true;
    return loop == Loop::Main && !m_atRest.empty();
}

bool Mailbox::serveReady(std::unique_lock<std::mutex>& lock, Loop loop) {
    const auto handOver = nextHandOver();
    const bool hasHandOver = handOver != m_handOvers.end();
    if (!m_posted.empty() && (!hasHandOver || m_posted.front().arrival < (*handOver)->arrival)) {
        Posted next = std::move(m_posted.front());
        m_posted.pop_front();
        run(lock, std::move(next));
    } else if (hasHandOver) {
        HandOver& next = **handOver;
        m_handOvers.erase(handOver);
        run(lock, next);
    } else if (loop == Loop::Main && !m_atRest.empty()) {
        Posted next = std::move(m_atRest.front());
        run(lock, std::move(next));
        m_atRest.pop_front();  // only now, so that no hand-over began inside it
    } else {
        return false;
    }
    return true;
}

void Mailbox::run(std::unique_lock<std::mutex>& lock, HandOver& handOver) {
    ++m_depth;
    ++m_nesting;
    lock.unlock();
    std::exception_ptr failure;
    {
        const CallNote::Scope note(handOver.note);
        const CarriedWorld world(handOver.world);
        try {
            handOver.task();
        } catch (...) {
            failure = std::current_exception();
        }
    }
    lock.lock();
    --m_nesting;
    --m_depth;
    handOver.failure = std::move(failure);
    handOver.end();
    m_changed.notify_all();
}

void Mailbox::run(std::unique_lock<std::mutex>& lock, Posted posted) {
    ++m_nesting;
    lock.unlock();
    {
        const CallNote::Scope note(nullptr);  // a task of the host is nobody's doing
        const CarriedWorld world(posted.world);
        try {
            posted.task();
        } catch (...) {
            if (!m_taskFailed) std::terminate();
            m_taskFailed(std::current_exception());
        }
        posted.task = nullptr;  // what it holds ends here, outside the lock
    }
    lock.lock();
    --m_nesting;
}

Mailbox::Hold::Hold(Mailbox& mailbox, std::shared_ptr<const Object> note)
    : m_mailbox(mailbox), m_note(std::move(note)) {
    const std::lock_guard lock(m_mailbox.m_mutex);
    m_mailbox.m_held.push_back(m_note.get());
}

Mailbox::Hold::~Hold() {
    const std::lock_guard lock(m_mailbox.m_mutex);
    auto& held = m_mailbox.m_held;
    held.erase(std::find(held.begin(), held.end(), m_note.get()));
    m_mailbox.m_changed.notify_all();
    if (m_mailbox.m_waker) m_mailbox.m_waker();
}

}  // namespace vigil
