#pragma once

#include <atomic>
#include <cstdint>

#include "platform/Export.hpp"

namespace vigil {

/// A lock of four bytes, where a program has many thousands of them: a std::mutex takes forty. Who finds it
/// taken sleeps until it is free; who waits longest is not preferred. Not recursive. Any thread.
class SmallLock {
  public:
    SmallLock() = default;
    SmallLock(const SmallLock&) = delete;
    SmallLock& operator=(const SmallLock&) = delete;

    void lock() {
        std::uint32_t state = kFree;
        if (!m_state.compare_exchange_strong(state, kTaken, std::memory_order_acquire)) wait();
    }
    bool try_lock() {
        std::uint32_t state = kFree;
        return m_state.compare_exchange_strong(state, kTaken, std::memory_order_acquire);
    }
    void unlock() {
        if (m_state.exchange(kFree, std::memory_order_release) == kAwaited) wake();
    }

  private:
    static constexpr std::uint32_t kFree = 0;
    static constexpr std::uint32_t kTaken = 1;
    static constexpr std::uint32_t kAwaited = 2;  // taken, and somebody may be asleep

    // Out of line, so that who sleeps and who wakes share the standard library's table of sleepers: a module
    // that hides its symbols has a table of its own.
    VIGIL_KIT void wait();
    VIGIL_KIT void wake();

    std::atomic<std::uint32_t> m_state{kFree};
};

}  // namespace vigil
