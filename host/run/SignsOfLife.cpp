#include "host/run/SignsOfLife.hpp"

#include <utility>

#include <pthread.h>

namespace vigil {

/// Main thread alone.
struct SignsOfLife::Shared {
    Say say;
    bool over = false;
};

SignsOfLife::SignsOfLife(Mailbox& mailbox, std::chrono::milliseconds pace, Say say)
    : m_mailbox(mailbox),
      m_pace(pace),
      m_shared(std::make_shared<Shared>(Shared{std::move(say)})),
      m_thread([this] { run(); }) {}

SignsOfLife::~SignsOfLife() {
    m_shared->over = true;
    {
        const std::lock_guard lock(m_mutex);
        m_over = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void SignsOfLife::run() {
    ::pthread_setname_np(::pthread_self(), "vigil-life");
    std::unique_lock lock(m_mutex);
    while (!m_over) {
        // A mailbox that is full is one that nobody serves: then silence is the right word.
        m_mailbox.dispatchAsync([shared = m_shared] {
            if (!shared->over) shared->say();
        });
        m_changed.wait_for(lock, m_pace, [this] { return m_over; });
    }
}

}  // namespace vigil
