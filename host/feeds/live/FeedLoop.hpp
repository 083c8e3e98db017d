#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <utility>
#include <vector>

#include "host/feeds/live/NamedThread.hpp"
#include "host/services/UniqueFd.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// One thread that serves many feeds: each when a descriptor that it watches has something, when its time has
/// come, and when it is woken. It sleeps as long as nobody is due.
class FeedLoop {
  public:
    using Time = std::chrono::steady_clock::time_point;
    static constexpr Time kNever = Time::max();

    /// Who is served. Whoever destroys it takes it out of the loop first.
    class Member {
      public:
        virtual ~Member();

      protected:
        /// Does what can be done without waiting and gives when it wants to be served again, kNever for not
        /// by itself. On the loop's thread.
        virtual Time serve() = 0;

      private:
        friend class FeedLoop;
        std::uint64_t m_number = 0;  // in the loop
    };

    /// An error where the system has no descriptors left.
    static Result<std::unique_ptr<FeedLoop>> start(const char* threadName);
    FeedLoop(const FeedLoop&) = delete;
    FeedLoop& operator=(const FeedLoop&) = delete;
    /// All members have been taken out before.
    ~FeedLoop();

    /// It is served soon. Any thread.
    void add(Member& member);
    /// When this returns it is not being served and never will be. Any thread but the loop's.
    void remove(Member& member);
    /// It is served soon. Any thread.
    void wake(Member& member);

    /// Serves the member whenever the descriptor has one of the events (EPOLLIN …) until it is unwatched,
    /// which must be before it is closed. False where it cannot be waited for (an ordinary file). While the
    /// member is served.
    bool watch(int fd, std::uint32_t events, const Member& member);
    void unwatch(int fd);

  private:
    struct Entry {
        Member* member = nullptr;
        Time at = kNever;
        bool woken = false;  // while it was being served
    };
    using Lock = std::unique_lock<std::mutex>;

    FeedLoop(UniqueFd epoll, UniqueFd wake);
    void run();
    std::vector<std::uint64_t> due(Lock& lock);
    void serve(Lock& lock, std::uint64_t number);
    void setTime(std::uint64_t number, Entry& entry, Time at);
    void wakeThread();

    UniqueFd m_epoll, m_wake;
    std::mutex m_mutex;
    std::condition_variable m_served;
    std::map<std::uint64_t, Entry> m_members;
    std::set<std::pair<Time, std::uint64_t>> m_times;  // of those that have one
    std::map<int, std::uint64_t> m_watched;
    std::uint64_t m_lastNumber = 0;
    std::uint64_t m_serving = 0;
    bool m_stopping = false;
    std::unique_ptr<NamedThread> m_thread;
};

}  // namespace vigil
