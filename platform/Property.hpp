#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace vigil {

/// A value that may be read and set from several threads at once, with observers that hear of every set, on
/// the setting thread and outside the lock, also when the value stays equal. A mutex and a value: an atomic
/// shared pointer would be reported as a race by thread sanitizer with the standard library in use.
template <class T>
class Property {
  public:
    using Observer = std::function<void()>;
    using Token = std::shared_ptr<const void>;

    Property() = default;
    explicit Property(T value) : m_value(std::move(value)) {}
    Property(const Property&) = delete;
    Property& operator=(const Property&) = delete;

    T get() const {
        const std::lock_guard lock(m_mutex);
        return m_value;
    }

    void set(T value) {
        std::shared_ptr<const Observers> observers;
        {
            const std::lock_guard lock(m_mutex);
            std::swap(m_value, value);
            observers = m_observers;
        }
        if (observers) tell(*observers);
    }

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
        return kept;
    }

    /// Calls the observers as `set` does, for a value whose text is built elsewhere.
    void notify() {
        std::shared_ptr<const Observers> observers;
        {
            const std::lock_guard lock(m_mutex);
            observers = m_observers;
        }
        if (observers) tell(*observers);
    }

  private:
    using Observers = std::vector<std::weak_ptr<Observer>>;

    static void tell(const Observers& observers) {
        for (const auto& weak : observers)
            if (const auto observer = weak.lock()) (*observer)();
    }

    mutable std::mutex m_mutex;
    T m_value{};
    std::shared_ptr<const Observers> m_observers;
};

}  // namespace vigil
