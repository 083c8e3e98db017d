#pragma once

#include <chrono>
#include <map>
#include <mutex>

namespace vigil {

/// The open connections of a listener. Those that keep a request going for ever, a byte now and then, are
/// cut: an idle time-out never meets them. Any thread.
class UploadConnections {
  public:
    using Time = std::chrono::steady_clock::time_point;

    /// Gives whether it is the only one.
    bool opened(int socket, Time now);
    /// A request has become whole.
    void progressed(int socket, Time now);
    /// Before the socket is closed.
    void closed(int socket);

    /// Cuts those whose request began before `limit`; gives how many are left.
    std::size_t cutOlderThan(Time limit);

  private:
    std::mutex m_mutex;
    std::map<int, Time> m_since;
};

}  // namespace vigil
