#include "host/run/StrandPool.hpp"

#include <system_error>
#include <utility>

#include <pthread.h>

namespace vigil {
namespace {

thread_local StrandPool* t_pool = nullptr;

}  // namespace

Strand::~Strand() = default;

StrandPool::StrandPool(std::size_t threads) : m_places(threads) {}

StrandPool::~StrandPool() {
    stop();
}

void StrandPool::wake(const std::shared_ptr<Strand>& strand) {
    const Lock lock(m_mutex);
    if (strand->m_turn == Strand::Turn::Idle)
        enqueue(strand);
    else
        strand->m_woken = true;
}

void StrandPool::resume(const std::shared_ptr<Strand>& strand) {
    const Lock lock(m_mutex);
    if (strand->m_turn == Strand::Turn::Waiting)
        enqueue(strand);
    else
        strand->m_resumed = true;
}

void StrandPool::enqueue(const std::shared_ptr<Strand>& strand) {
    strand->m_turn = Strand::Turn::Queued;
    m_queue.push_back(strand);
    startThreads();
    m_changed.notify_one();
}

// Enough threads for what is queued, up to the places that are not away.
void StrandPool::startThreads() {
    if (m_stopping || m_queue.size() <= m_idle) return;
    if (m_threads.size() - m_away >= m_places) return;
    try {
        std::thread thread([this] { work(); });
        const auto id = thread.get_id();
        m_threads.emplace(id, std::move(thread));
    } catch (const std::system_error&) {
        // The machine gives no more threads. What is queued waits for those that there are, and the next wake
        // asks again.
    }
}

void StrandPool::work() {
    t_pool = this;
    ::pthread_setname_np(::pthread_self(), "vigil-strand");
    Lock lock(m_mutex);
    while (true) {
        // One too many, since somebody has come back from being away.
        if (m_stopping || m_threads.size() - m_away > m_places) break;
        if (m_queue.empty()) {
            ++m_idle;
            m_changed.wait(lock);
            --m_idle;
            continue;
        }
        auto strand = std::move(m_queue.front());
        m_queue.pop_front();
        run(lock, std::move(strand));
    }
    if (m_stopping) return;  // joined from the map
    auto self = m_threads.extract(std::this_thread::get_id());
    m_ended.push_back(std::move(self.mapped()));
}

void StrandPool::run(Lock& lock, std::shared_ptr<Strand> strand) {
    strand->m_turn = Strand::Turn::Running;
    strand->m_woken = false;
    strand->m_resumed = false;
    auto ended = takeEnded();
    lock.unlock();
    for (std::thread& thread : ended)
        thread.join();
    const auto next = strand->step();
    lock.lock();
    if (next == Strand::Step::Wait && !strand->m_resumed) {
        strand->m_turn = Strand::Turn::Waiting;
    } else if (next == Strand::Step::Idle && !strand->m_woken) {
        strand->m_turn = Strand::Turn::Idle;
    } else {
        enqueue(strand);
    }
    // The last reference may end here, and what a strand holds is none of the pool's business.
    lock.unlock();
    strand.reset();
    lock.lock();
}

std::vector<std::thread> StrandPool::takeEnded() {
    return std::exchange(m_ended, {});
}

void StrandPool::stop() {
    std::map<std::thread::id, std::thread> threads;
    std::vector<std::thread> ended;
    {
        const Lock lock(m_mutex);
        m_stopping = true;
        threads.swap(m_threads);
        ended = takeEnded();
        m_queue.clear();
        m_changed.notify_all();
    }
    for (auto& [id, thread] : threads)
        thread.join();
    for (std::thread& thread : ended)
        thread.join();
}

StrandPool::Counts StrandPool::counts() const {
    const Lock lock(m_mutex);
    return {m_threads.size(), m_away, m_queue.size()};
}

StrandPool::Away::Away() : m_pool(t_pool) {
    if (!m_pool) return;
    const Lock lock(m_pool->m_mutex);
    ++m_pool->m_away;
    m_pool->startThreads();
}

StrandPool::Away::~Away() {
    if (!m_pool) return;
    const Lock lock(m_pool->m_mutex);
    --m_pool->m_away;
    m_pool->startThreads();
    // An idle thread finds out that it is one too many.
    m_pool->m_changed.notify_one();
}

}  // namespace vigil
