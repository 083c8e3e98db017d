#pragma once

#include <atomic>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/Export.hpp"
#include "platform/MainQueue.hpp"
#include "platform/Object.hpp"

namespace vigil {

/// One announcement: its name, whom it is about, and further objects by key.
struct VIGIL_KIT Notification {
    using UserInfo = std::vector<std::pair<std::string, std::shared_ptr<const Object>>>;

    std::string name;
    std::shared_ptr<const Object> object;
    UserInfo userInfo;

    /// The entry of the user information under `key`, or nothing.
    std::shared_ptr<const Object> userInfoForKey(std::string_view key) const;
};

/// An observer that threw, and what it threw.
struct DeliveryFailure {
    std::shared_ptr<Object> observer;
    std::exception_ptr what;
};

/// Delivers announcements to whoever observes them, on the posting thread. Observers are held weakly: one
/// that has died is skipped and forgotten. Adding, removing and dying are safe while a post is under way: an
/// observer removed before its turn is not called, one added meanwhile hears of the next post. Adding twice
/// delivers twice. Any thread.
class VIGIL_KIT NotificationCenter {
  public:
    using Method = std::function<void(Object&, const Notification&)>;

    /// An observer whose last reference ends during a delivery off the main thread is destroyed on `queue`.
    /// (Whoever drops the others meanwhile does so on the main thread, between posts.)
    explicit NotificationCenter(MainQueue& queue);

    /// `object` is the one whose notifications are wanted; without one, those posted without one.
    void addObserver(const std::shared_ptr<Object>& observer, Method method, std::string_view name,
                     const std::shared_ptr<const Object>& object);

    template <class T>
    void addObserver(const std::shared_ptr<T>& observer, void (T::*method)(const Notification&),
                     std::string_view name, const std::shared_ptr<const Object>& object) {
        addObserver(
            std::static_pointer_cast<Object>(observer),
            [method](Object& target, const Notification& n) { (static_cast<T&>(target).*method)(n); }, name,
            object);
    }

    /// Removes every entry of that observer, name and object.
    void removeObserver(const Object& observer, std::string_view name,
                        const std::shared_ptr<const Object>& object);

    /// Calls every observer of (name, object), also after one has thrown, and returns what was thrown. During
    /// each call the observer is the thread's `CallNote`.
    std::vector<DeliveryFailure> post(const Notification& notification);

    /// The number of living entries for (name, object).
    std::size_t observerCount(std::string_view name, const std::shared_ptr<const Object>& object) const;

  private:
    struct Entry {
        std::weak_ptr<Object> observer;
        const Object* address;
        std::weak_ptr<const Object> object;
        Method method;
        std::atomic<bool> removed{false};
    };
    using Entries = std::vector<std::shared_ptr<Entry>>;
    using Key = std::pair<std::string, const Object*>;
    using KeyView = std::pair<std::string_view, const Object*>;
    struct KeyHash {
        using is_transparent = void;
        std::size_t operator()(const KeyView& key) const;
        std::size_t operator()(const Key& key) const { return (*this)(KeyView(key)); }
    };
    struct KeyEqual {
        using is_transparent = void;
        bool operator()(const KeyView& a, const KeyView& b) const { return a == b; }
    };

    std::shared_ptr<const Entries> entriesFor(std::string_view name, const Object* object) const;
    void replace(const Key& key, const std::function<bool(const Entry&)>& drops,
                 std::shared_ptr<Entry> added);
    void release(std::shared_ptr<Object> observer);

    MainQueue& m_queue;
    mutable std::mutex m_mutex;
    std::unordered_map<Key, std::shared_ptr<const Entries>, KeyHash, KeyEqual> m_observers;
};

}  // namespace vigil
