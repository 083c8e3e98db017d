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
    if (!note) return handOver(task);
    // Every plug-in of a site is known here; one that is not any more was removed while it judged.
    auto who = m_desk.identity(*note);
    if (!who) throw HandOverRefused();
    m_desk.fire(note, std::move(*who), task, handOver);
}

}  // namespace vigil
