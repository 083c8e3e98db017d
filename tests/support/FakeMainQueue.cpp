#include "tests/support/FakeMainQueue.hpp"

#include <future>
#include <stdexcept>
#include <utility>

#include "platform/CallNote.hpp"
#include "platform/World.hpp"

namespace vigil {
namespace {

// How many hand-overs run on this thread, so that it counts as the main thread of an inline queue meanwhile.
thread_local int t_inHandOver = 0;

struct HandOverMark {
    HandOverMark() { ++t_inHandOver; }
    ~HandOverMark() { --t_inHandOver; }
};

}  // namespace

FakeMainQueue::FakeMainQueue(Form form) : m_form(form) {
    if (form == Form::Threaded) m_thread = std::thread([this] { serve(); });
}

FakeMainQueue::~FakeMainQueue() {
    if (!m_thread.joinable()) return;
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

bool FakeMainQueue::isMainThread() const {
    if (m_form == Form::Threaded) return std::this_thread::get_id() == m_thread.get_id();
    const std::lock_guard lock(m_mutex);
    return m_isMain || t_inHandOver > 0;
}

void FakeMainQueue::dispatchSync(const Task& task) {
    const bool onMain = isMainThread();
    {
        const std::lock_guard lock(m_mutex);
        if (m_closing && !onMain) throw std::runtime_error("the main queue is closing");
        ++m_handOvers;
    }
    if (onMain) return task();
    if (m_form == Form::Inline) {
        const HandOverMark mark;
        return task();
    }
    World* const world = World::current();
    const auto note = CallNote::current();
    std::packaged_task<void()> wrapped([&] {
        const CallNote::Scope noted(note);
        if (!world) return task();
        const World::Scope scope(*world);
        task();
    });
    auto done = wrapped.get_future();
    {
        const std::lock_guard lock(m_mutex);
        m_posted.emplace_back([&wrapped] { wrapped(); });
    }
    m_changed.notify_all();
    done.get();
}

bool FakeMainQueue::dispatchAsync(Task task) {
    {
        const std::lock_guard lock(m_mutex);
        if (m_closing) return false;
        ++m_taken;
        m_posted.push_back(std::move(task));
    }
    m_changed.notify_all();
    return true;
}

void FakeMainQueue::serve() {
    std::unique_lock lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return m_ending || !m_posted.empty(); });
        if (m_posted.empty()) return;
        Task task = std::move(m_posted.front());
        m_posted.pop_front();
        ++m_running;
        lock.unlock();
        task();
        task = nullptr;
        lock.lock();
        --m_running;
        ++m_served;
        m_changed.notify_all();
    }
}

int FakeMainQueue::runPosted() {
    std::unique_lock lock(m_mutex);
    const int before = m_served;
    if (m_form == Form::Threaded) {
        m_changed.wait(lock, [this] { return m_posted.empty() && m_running == 0; });
        return m_served - before;
    }
    while (!m_posted.empty()) {
        Task task = std::move(m_posted.front());
        m_posted.pop_front();
        lock.unlock();
        {
            const HandOverMark mark;
            task();
            task = nullptr;
        }
        lock.lock();
        ++m_served;
    }
    return m_served - before;
}

void FakeMainQueue::setMainThread(bool isMain) {
    const std::lock_guard lock(m_mutex);
    m_isMain = isMain;
}

void FakeMainQueue::setClosing(bool closing) {
    const std::lock_guard lock(m_mutex);
    m_closing = closing;
}

int FakeMainQueue::handOvers() const {
    const std::lock_guard lock(m_mutex);
    return m_handOvers;
}

int FakeMainQueue::postedTasks() const {
    const std::lock_guard lock(m_mutex);
    return m_taken;
}

}  // namespace vigil
