#include "host/feeds/live/FeedLoop.hpp"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace vigil {
namespace {

constexpr std::uint64_t kWakeUp = 0;  // members are numbered from 1

int limitUntil(FeedLoop::Time time) {
    if (time == FeedLoop::kNever) return -1;
    const auto left = time - std::chrono::steady_clock::now();
    const auto whole = std::chrono::ceil<std::chrono::milliseconds>(left).count();
    return static_cast<int>(std::clamp<decltype(whole)>(whole, 0, INT_MAX));
}

}  // namespace

FeedLoop::Member::~Member() = default;

Result<std::unique_ptr<FeedLoop>> FeedLoop::start(const char* threadName) {
    UniqueFd epoll(::epoll_create1(EPOLL_CLOEXEC));
    UniqueFd wake(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.u64 = kWakeUp;
    if (!epoll || !wake || ::epoll_ctl(epoll.get(), EPOLL_CTL_ADD, wake.get(), &event) != 0)
        return Error{std::string("feeds cannot be waited for: ") + std::strerror(errno)};
    std::unique_ptr<FeedLoop> made(new FeedLoop(std::move(epoll), std::move(wake)));
    made->m_thread = std::make_unique<NamedThread>(threadName, [loop = made.get()] { loop->run(); });
    return made;
}

FeedLoop::FeedLoop(UniqueFd epoll, UniqueFd wake) : m_epoll(std::move(epoll)), m_wake(std::move(wake)) {}

FeedLoop::~FeedLoop() {
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    wakeThread();
    m_thread.reset();
}

void FeedLoop::add(Member& member) {
    {
        const std::lock_guard lock(m_mutex);
        member.m_number = ++m_lastNumber;
        Entry& entry = m_members[member.m_number];
        entry.member = &member;
        setTime(member.m_number, entry, std::chrono::steady_clock::now());
    }
    wakeThread();
}

void FeedLoop::remove(Member& member) {
    Lock lock(m_mutex);
    const auto found = m_members.find(member.m_number);
    if (found == m_members.end()) return;
    m_served.wait(lock, [&] { return m_serving != member.m_number; });
    setTime(member.m_number, found->second, kNever);
    m_members.erase(found);
    for (auto it = m_watched.begin(); it != m_watched.end();) {
        if (it->second == member.m_number) {
            ::epoll_ctl(m_epoll.get(), EPOLL_CTL_DEL, it->first, nullptr);
            it = m_watched.erase(it);
        } else {
            ++it;
        }
    }
}

void FeedLoop::wake(Member& member) {
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_members.find(member.m_number);
        if (found == m_members.end()) return;
        found->second.woken = true;
        setTime(found->first, found->second, std::chrono::steady_clock::now());
    }
    wakeThread();
}

bool FeedLoop::watch(int fd, std::uint32_t events, const Member& member) {
    epoll_event event{};
    event.events = events;
    event.data.u64 = member.m_number;
    const std::lock_guard lock(m_mutex);
    const int how = m_watched.contains(fd) ? EPOLL_CTL_MOD : EPOLL_CTL_ADD;
    if (::epoll_ctl(m_epoll.get(), how, fd, &event) != 0) return false;
    m_watched[fd] = member.m_number;
    return true;
}

void FeedLoop::unwatch(int fd) {
    const std::lock_guard lock(m_mutex);
    if (m_watched.erase(fd) != 0) ::epoll_ctl(m_epoll.get(), EPOLL_CTL_DEL, fd, nullptr);
}

void FeedLoop::run() {
    Lock lock(m_mutex);
    while (!m_stopping)
        for (const std::uint64_t number : due(lock))
            serve(lock, number);
}

// Waits until somebody is due. An event may be of a member that has gone meanwhile; its number is nobody's.
std::vector<std::uint64_t> FeedLoop::due(Lock& lock) {
    const Time next = m_times.empty() ? kNever : m_times.begin()->first;
    lock.unlock();
    epoll_event events[32];
    const int count = ::epoll_wait(m_epoll.get(), events, 32, limitUntil(next));
    lock.lock();
    std::vector<std::uint64_t> found;
    for (int i = 0; i < count; ++i) {
        const std::uint64_t which = events[i].data.u64;  // a copy: the structure is packed
        if (which != kWakeUp) {
            found.push_back(which);
            continue;
        }
        std::uint64_t times = 0;
        // fails only when nobody has set it
        [[maybe_unused]] const ssize_t taken = ::read(m_wake.get(), &times, sizeof times);
    }
    const Time now = std::chrono::steady_clock::now();
    for (auto it = m_times.begin(); it != m_times.end() && it->first <= now; ++it)
        found.push_back(it->second);
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

void FeedLoop::serve(Lock& lock, std::uint64_t number) {
    const auto found = m_members.find(number);
    if (m_stopping || found == m_members.end()) return;
    Entry& entry = found->second;
    entry.woken = false;
    m_serving = number;
    lock.unlock();
    const Time at = entry.member->serve();
    lock.lock();
    m_serving = 0;
    // nobody takes it out of the loop while it is being served, so it is still there
    setTime(number, entry, entry.woken ? std::chrono::steady_clock::now() : at);
    m_served.notify_all();
}

void FeedLoop::setTime(std::uint64_t number, Entry& entry, Time at) {
    if (entry.at != kNever) m_times.erase({entry.at, number});
    entry.at = at;
    if (at != kNever) m_times.insert({at, number});
}

void FeedLoop::wakeThread() {
    const std::uint64_t once = 1;
    // fails only when the count is full, and then it is set
    [[maybe_unused]] const ssize_t written = ::write(m_wake.get(), &once, sizeof once);
}

}  // namespace vigil
