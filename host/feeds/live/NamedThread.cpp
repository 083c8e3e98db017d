#include "host/feeds/live/NamedThread.hpp"

#include <condition_variable>
#include <mutex>
#include <utility>

#include <pthread.h>
#include <signal.h>

namespace vigil {

struct NamedThread::Ended {
    std::mutex mutex;
    std::condition_variable changed;
    bool is = false;
};

NamedThread::NamedThread(const char* name, std::function<void()> work) : m_ended(std::make_shared<Ended>()) {
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before);  // a thread inherits the mask
    m_thread = std::thread([ended = m_ended, name = std::string(name), work = std::move(work)]() mutable {
        ::pthread_setname_np(::pthread_self(), name.c_str());
        work();
        work = nullptr;  // what it owns ends before it is said to have ended
        const std::lock_guard lock(ended->mutex);
        ended->is = true;
        ended->changed.notify_all();
    });
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

NamedThread::~NamedThread() {
    if (m_thread.joinable()) m_thread.join();
}

bool NamedThread::endBy(std::chrono::steady_clock::time_point deadline) {
    if (!m_thread.joinable()) return true;
    bool ended = false;
    {
        std::unique_lock lock(m_ended->mutex);
        ended = m_ended->changed.wait_until(lock, deadline, [this] { return m_ended->is; });
    }
    if (ended)
        m_thread.join();
    else
        m_thread.detach();
    return ended;
}

}  // namespace vigil
