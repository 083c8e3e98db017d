#include "host/desktop/Background.hpp"

#include <utility>

namespace vigil {

Background::Background() : m_thread([this] { work(); }) {}

Background::~Background() {
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
        m_jobs.clear();
    }
    m_wake.notify_all();
    m_thread.join();
}

void Background::run(std::function<void()> job) {
    {
        const std::lock_guard lock(m_mutex);
        m_jobs.push_back(std::move(job));
    }
    m_wake.notify_all();
}

void Background::work() {
    std::unique_lock lock(m_mutex);
    while (true) {
        m_wake.wait(lock, [this] { return m_ending || !m_jobs.empty(); });
        if (m_ending) return;
        const auto job = std::move(m_jobs.front());
        m_jobs.pop_front();
        lock.unlock();
        job();
        lock.lock();
    }
}

}  // namespace vigil
