#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <thread>
#include <utility>

#include "platform/PlainWords.hpp"
#include "platform/SmallLock.hpp"

namespace vigil {

/// A value that several threads may read and exchange at once, each seeing it whole. Any thread.
template <class T>
class SharedValue {
  public:
    SharedValue() = default;
    explicit SharedValue(T value) : m_value(std::move(value)) {}

    T get() const {
        const std::lock_guard lock(m_lock);
        return m_value;
    }
    /// Sets the value and gives back the one before.
    T exchange(T value) {
        const std::lock_guard lock(m_lock);
        std::swap(m_value, value);
        return value;
    }

  private:
    T m_value{};
    mutable SmallLock m_lock;
};

/// The same for a few plain bytes (a flag, a number, a date): writers take turns, readers take no lock. Who
/// reads while a writer is at work sees so by the sequence, which is odd meanwhile, and reads again. The
/// bytes are atomic words, so that reading them then is no race.
template <class T>
requires PlainWords<T>::kPossible class SharedValue<T> {
  public:
    SharedValue() : SharedValue(T{}) {}
    explicit SharedValue(const T& value) { store(value); }

    T get() const {
        for (;;) {
            const std::uint64_t before = m_sequence.load(std::memory_order_acquire);
            typename Plain::Words words;
            for (std::size_t i = 0; i < words.size(); ++i)
                words[i] = m_words[i].load(std::memory_order_acquire);
            if (before % 2 == 0 && m_sequence.load(std::memory_order_relaxed) == before)
                return Plain::valueOf(words);
            std::this_thread::yield();
        }
    }
    T exchange(const T& value) {
        const std::lock_guard lock(m_lock);
        const T before = get();
        store(value);
        return before;
    }

  private:
    using Plain = PlainWords<T>;

    // A word of the new value is released behind the odd sequence, so whoever sees the word sees that too.
    void store(const T& value) {
        const auto words = Plain::of(value);
        const std::uint64_t before = m_sequence.load(std::memory_order_relaxed);
        m_sequence.store(before + 1, std::memory_order_relaxed);
        for (std::size_t i = 0; i < words.size(); ++i)
            m_words[i].store(words[i], std::memory_order_release);
        m_sequence.store(before + 2, std::memory_order_release);
    }

    std::atomic<std::uint64_t> m_sequence{0};
    std::array<std::atomic<std::uint64_t>, Plain::kCount> m_words{};
    SmallLock m_lock;
};

}  // namespace vigil
