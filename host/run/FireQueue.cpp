#include "host/run/FireQueue.hpp"

#include "host/run/StrandPool.hpp"
#include "platform/CallNote.hpp"

namespace vigil {

void FireQueue::dispatchSync(const Task& task) {
    if (isMainThread()) return task();
    const auto handOver = [this](const Task& given) {
        const StrandPool::Away away;
        m_mailbox.dispatchSync(given);
    };
    const auto note = CallNote::current();
    auto who = note ? m_desk.identity(*note) : std::nullopt;
    if (!who) return handOver(task);
    m_desk.fire(note, std::move(*who), task, handOver);
}

}  // namespace vigil
