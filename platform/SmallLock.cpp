#include "platform/SmallLock.hpp"

namespace vigil {

// Whoever has slept takes the lock as awaited, since others may sleep still; one wake too many is harmless.
void SmallLock::wait() {
    while (m_state.exchange(kAwaited, std::memory_order_acquire) != kFree)
        m_state.wait(kAwaited, std::memory_order_relaxed);
}

void SmallLock::wake() {
    m_state.notify_one();
}

}  // namespace vigil
