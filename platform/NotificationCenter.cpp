#include "platform/NotificationCenter.hpp"

#include <algorithm>
#include <stdexcept>

#include "platform/CallNote.hpp"

namespace vigil {
namespace {

bool sameOwner(const std::weak_ptr<const Object>& a, const std::shared_ptr<const Object>& b) {
    return !a.owner_before(b) && !b.owner_before(a);
}

}  // namespace

MainQueue::~MainQueue() = default;
RunLoop::~RunLoop() = default;

std::shared_ptr<const Object> Notification::userInfoForKey(std::string_view key) const {
    for (const auto& [name_, value] : userInfo)
        if (name_ == key) return value;
    return nullptr;
}

NotificationCenter::NotificationCenter(MainQueue& queue) : m_queue(queue) {}

std::size_t NotificationCenter::KeyHash::operator()(const KeyView& key) const {
    return std::hash<std::string_view>{}(key.first) * 31 + std::hash<const void*>{}(key.second);
}

// The lists are replaced whole and never changed, so that a post reads its own without a lock.
void NotificationCenter::replace(const Key& key, const std::function<bool(const Entry&)>& drops,
                                 std::shared_ptr<Entry> added) {
    const std::lock_guard lock(m_mutex);
    auto next = std::make_shared<Entries>();
    if (const auto found = m_observers.find(key); found != m_observers.end()) {
        for (const auto& entry : *found->second) {
            if (entry->observer.expired()) continue;
            if (drops(*entry))
                entry->removed = true;
            else
                next->push_back(entry);
        }
    }
    if (added) next->push_back(std::move(added));
    if (next->empty())
        m_observers.erase(key);
    else
        m_observers[key] = std::move(next);
}

void NotificationCenter::addObserver(const std::shared_ptr<Object>& observer, Method method,
                                     std::string_view name, const std::shared_ptr<const Object>& object) {
    auto entry = std::make_shared<Entry>();
    entry->observer = observer;
    entry->address = observer.get();
    entry->object = object;
    entry->method = std::move(method);
    replace(
        {std::string(name), object.get()}, [](const Entry&) { return false; }, std::move(entry));
}

void NotificationCenter::removeObserver(const Object& observer, std::string_view name,
                                        const std::shared_ptr<const Object>& object) {
    // An entry whose observer is alive has its address to itself, so the address tells observers apart here.
    replace(
        {std::string(name), object.get()},
        [&](const Entry& entry) { return entry.address == &observer && sameOwner(entry.object, object); },
        nullptr);
}

std::shared_ptr<const NotificationCenter::Entries> NotificationCenter::entriesFor(
    std::string_view name, const Object* object) const {
    const std::lock_guard lock(m_mutex);
    const auto found = m_observers.find(KeyView(name, object));
    return found == m_observers.end() ? nullptr : found->second;
}

std::vector<DeliveryFailure> NotificationCenter::post(const Notification& notification) {
    std::vector<DeliveryFailure> failures;
    const auto entries = entriesFor(notification.name, notification.object.get());
    if (!entries) return failures;
    bool someDied = false;
    for (const auto& entry : *entries) {
        auto observer = entry->observer.lock();
        if (!observer) someDied = true;
        if (!observer || entry->removed || !sameOwner(entry->object, notification.object)) continue;
        try {
            const CallNote::Scope note(observer);
            entry->method(*observer, notification);
        } catch (...) {
            failures.push_back({observer, std::current_exception()});
        }
        release(std::move(observer));
    }
    if (someDied)
        replace(
            {notification.name, notification.object.get()}, [](const Entry&) { return false; }, nullptr);
    return failures;
}

void NotificationCenter::release(std::shared_ptr<Object> observer) {
    if (observer.use_count() != 1 || m_queue.isMainThread()) return;
    // Held once more removed, so that a queue that refuses the task does not end the observer here.
    auto last = std::make_shared<std::shared_ptr<Object>>(std::move(observer));
    if (m_queue.dispatchAsync([last] { last->reset(); })) return;
    try {
        m_queue.dispatchSync([&] { last->reset(); });
    } catch (const std::runtime_error&) {
        // The queue is closing: no main thread serves any more, and the observer ends where it is.
    }
}

std::size_t NotificationCenter::observerCount(std::string_view name,
                                              const std::shared_ptr<const Object>& object) const {
    const auto entries = entriesFor(name, object.get());
    if (!entries) return 0;
    return static_cast<std::size_t>(std::count_if(entries->begin(), entries->end(), [&](const auto& entry) {
        return !entry->removed && !entry->observer.expired() && sameOwner(entry->object, object);
    }));
}

}  // namespace vigil
