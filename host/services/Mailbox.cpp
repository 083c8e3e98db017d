#include "host/services/Mailbox.hpp"

#include <limits>
#include <utility>

#include "host/services/Mailbox_HandOver.hpp"

// What any thread may do: hand over, post, refuse. Mailbox_Serve.cpp holds the main thread's side.

namespace vigil {

HandOverRefused::HandOverRefused()
    : std::runtime_error("the main queue is closing; the task was not begun") {}
HandOverRefused::~HandOverRefused() = default;

Mailbox::Mailbox(TaskFailed taskFailed)
    : m_mainThread(std::this_thread::get_id()), m_taskFailed(std::move(taskFailed)) {}

Mailbox::~Mailbox() {
    close();
}

bool Mailbox::isMainThread() const {
    return std::this_thread::get_id() == m_mainThread;
}

void Mailbox::dispatchSync(const Task& task) {
    if (isMainThread()) return task();
    HandOver handOver(task);
    std::unique_lock lock(m_mutex);
    if (m_handOversRefused) handOver.refuse();
    if (!handOver.ended) {
        handOver.arrival = ++m_arrivals;
        m_handOvers.push_back(&handOver);
        m_changed.notify_all();
        if (m_waker) m_waker();
        handOver.changed.wait(lock, [&] { return handOver.ended; });
    }
    lock.unlock();
    if (handOver.failure) std::rethrow_exception(std::move(handOver.failure));
}

bool Mailbox::dispatchAsync(Task task) {
    return post(m_posted, std::move(task), kPostedTasks);
}

bool Mailbox::dispatchReport(Task task) {
    return post(m_posted, std::move(task), std::numeric_limits<std::size_t>::max());
}

bool Mailbox::dispatchAtRest(Task task) {
    return post(m_atRest, std::move(task), kPostedTasks);
}

bool Mailbox::post(std::deque<Posted>& queue, Task task, std::size_t most) {
    const std::lock_guard lock(m_mutex);
    if (m_closed || m_posted.size() + m_atRest.size() >= most) return false;
    queue.push_back({++m_arrivals, std::move(task), World::current()});
    m_changed.notify_all();
    if (m_waker) m_waker();
    return true;
}

void Mailbox::wake() {
    const std::lock_guard lock(m_mutex);
    m_woken = true;
    m_changed.notify_all();
    if (m_waker) m_waker();
}

void Mailbox::setWaker(std::function<void()> waker) {
    const std::lock_guard lock(m_mutex);
    m_waker = std::move(waker);
}

void Mailbox::refuseHandOvers() {
    const std::lock_guard lock(m_mutex);
    m_handOversRefused = true;
    for (HandOver* handOver : std::exchange(m_handOvers, {}))
        handOver->refuse();
}

void Mailbox::close() {
    refuseHandOvers();
    const std::lock_guard lock(m_mutex);
    m_closed = true;
}

int Mailbox::depth() const {
    const std::lock_guard lock(m_mutex);
    return m_depth;
}

std::size_t Mailbox::waiting() const {
    const std::lock_guard lock(m_mutex);
    return m_handOvers.size() + m_posted.size() + m_atRest.size();
}

}  // namespace vigil
