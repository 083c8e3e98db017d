#include "host/feeds/live/UploadConnections.hpp"

#include <sys/socket.h>

namespace vigil {

bool UploadConnections::opened(int socket, Time now) {
    const std::lock_guard lock(m_mutex);
    m_since[socket] = now;
    return m_since.size() == 1;
}

void UploadConnections::progressed(int socket, Time now) {
    const std::lock_guard lock(m_mutex);
    if (const auto found = m_since.find(socket); found != m_since.end()) found->second = now;
}

void UploadConnections::closed(int socket) {
    const std::lock_guard lock(m_mutex);
    m_since.erase(socket);
}

std::size_t UploadConnections::cutOlderThan(Time limit) {
    const std::lock_guard lock(m_mutex);
    // only shut down: who owns the socket learns of it and closes it
    for (const auto& [socket, since] : m_since)
        if (since < limit) ::shutdown(socket, SHUT_RDWR);
    return m_since.size();
}

}  // namespace vigil
