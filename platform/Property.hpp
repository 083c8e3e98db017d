#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/SharedValue.hpp"

namespace vigil {

/// A value that may be read and set from several threads at once, with observers that hear of every set, on
/// the setting thread and outside the lock, also when the value stays equal. Reading plain bytes takes no
/// lock; for the rest it is a mutex and a value: an atomic shared pointer would be reported as a race by
/// thread sanitizer with the standard library in use.
template <class T>
class Property {
  public:
    using Observer = std::function<void()>;
    using Token = std::shared_ptr<const void>;

    Property() = default;
    explicit Property(T value) : m_value(std::move(value)) {}
    Property(const Property&) = delete;
    Property& operator=(const Property&) = delete;

    T get() const { return m_value.get(); }

    void set(T value) {
        // The value before ends here, outside the lock and before anybody is told.
        static_cast<void>(m_value.exchange(std::move(value)));
        m_generation.fetch_add(1, std::memory_order_release);
        notify();
    }

    /// Another number after every set, so that who keeps a copy knows when to renew it. Read it before the
    /// value: the value is then at least as new.
    std::uint64_t generation() const { return m_generation.load(std::memory_order_acquire); }

    /// The observer is called after every set for as long as the token lives.
    [[nodiscard]] Token observe(Observer observer) {
        auto kept = std::make_shared<Observer>(std::move(observer));
        const std::lock_guard lock(m_mutex);
        auto next = std::make_shared<Observers>();
        if (m_observers) {
            for (const auto& weak : *m_observers)
                if (!weak.expired()) next->push_back(weak);
        }
        next->push_back(kept);
        m_observers = std::move(next);
        m_observed = true;
        return kept;
    }

    /// Calls the observers as `set` does, for a value whose text is built elsewhere.
    void notify() {
        if (!m_observed) return;
        std::shared_ptr<const Observers> observers;
        {
            const std::lock_guard lock(m_mutex);
            observers = m_observers;
        }
        tell(*observers);
    }

  private:
    using Observers = std::vector<std::weak_ptr<Observer>>;

    static void tell(const Observers& observers) {
        for (const auto& weak : observers)
            if (const auto observer = weak.lock()) (*observer)();
    }

    SharedValue<T> m_value;
    std::atomic<std::uint64_t> m_generation{0};
    std::atomic<bool> m_observed{false};  // never again false: most properties have no observer at all
    mutable std::mutex m_mutex;
    std::shared_ptr<const Observers> m_observers;
};

/// A copy of a property's value that is renewed only when the property has been set since. One thread at a
/// time.
template <class T>
class Remembered {
  public:
    /// Valid until the next call.
    const T& of(const Property<T>& property) {
        const std::uint64_t generation = property.generation();
        if (m_fresh && generation == m_generation) return m_value;
        m_value = property.get();
        m_generation = generation;
        m_fresh = true;
        return m_value;
    }

  private:
    T m_value{};
    std::uint64_t m_generation = 0;
    bool m_fresh = false;
};

}  // namespace vigil
