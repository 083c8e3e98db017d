#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/SharedValue.hpp"
#include "platform/SmallLock.hpp"

namespace vigil {

/// A value that may be read and set from several threads at once, with observers that hear of every set, on
/// the setting thread and outside the lock, also when the value stays equal. Reading plain bytes takes no
/// lock; for the rest it is a mutex and a value: an atomic shared pointer would be reported as a race by
/// thread sanitizer with the standard library in use. What it takes to be observed is made for the first
/// observer, since most properties have none at all.
template <class T>
class Property {
  public:
    using Observer = std::function<void()>;
    using Token = std::shared_ptr<const void>;

    Property() = default;
    explicit Property(T value) : m_value(std::move(value)) {}
    ~Property() { delete m_observed.load(std::memory_order_acquire); }
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
        Observed& observed = this->observed();
        const std::lock_guard lock(observed.lock);
        auto next = std::make_shared<Observers>();
        if (observed.observers) {
            for (const auto& weak : *observed.observers)
                if (!weak.expired()) next->push_back(weak);
        }
        next->push_back(kept);
        observed.observers = std::move(next);
        return kept;
    }

    /// Calls the observers as `set` does, for a value whose text is built elsewhere.
    void notify() {
        Observed* const observed = m_observed.load(std::memory_order_acquire);
        if (!observed) return;
        std::shared_ptr<const Observers> observers;
        {
            const std::lock_guard lock(observed->lock);
            observers = observed->observers;
        }
        if (observers) tell(*observers);
    }

  private:
    using Observers = std::vector<std::weak_ptr<Observer>>;
    struct Observed {
        SmallLock lock;
        std::shared_ptr<const Observers> observers;  // absent before the first has come in
    };

    // Of two threads that make it at once, one does it for nothing.
    Observed& observed() {
        Observed* found = m_observed.load(std::memory_order_acquire);
        if (found) return *found;
        auto made = std::make_unique<Observed>();
        if (m_observed.compare_exchange_strong(found, made.get(), std::memory_order_acq_rel))
            return *made.release();
        return *found;
    }

    static void tell(const Observers& observers) {
        for (const auto& weak : observers)
            if (const auto observer = weak.lock()) (*observer)();
    }

    SharedValue<T> m_value;
    std::atomic<std::uint64_t> m_generation{0};
    std::atomic<Observed*> m_observed{nullptr};  // owned
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
