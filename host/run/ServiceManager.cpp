#include "host/run/ServiceManager.hpp"

#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "host/services/UniqueFd.hpp"

namespace vigil {
namespace {

template <class Number>
Number numberOf(const char* text) {
    Number number = 0;
    if (text) std::from_chars(text, text + std::strlen(text), number);
    return number;
}

}  // namespace

ServiceManager::ServiceManager() {
    if (const char* socket = std::getenv("NOTIFY_SOCKET")) m_socket = socket;
    const auto microseconds = numberOf<long long>(std::getenv("WATCHDOG_USEC"));
    const char* pid = std::getenv("WATCHDOG_PID");
    if (microseconds > 0 && (!pid || numberOf<long>(pid) == ::getpid()))
        m_aliveEvery = std::chrono::milliseconds(microseconds / 2000);
    for (const char* name : {"NOTIFY_SOCKET", "WATCHDOG_USEC", "WATCHDOG_PID"})
        ::unsetenv(name);
}

void ServiceManager::ready(const std::string& words) {
    send("READY=1\nSTATUS=" + words);
}

void ServiceManager::reloading() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    send("RELOADING=1\nMONOTONIC_USEC=" + std::to_string(now.tv_sec * 1000000LL + now.tv_nsec / 1000));
}

void ServiceManager::stopping() {
    send("STOPPING=1");
}

void ServiceManager::alive() {
    send("WATCHDOG=1");
}

void ServiceManager::send(const std::string& text) {
    sockaddr_un address{};
    if (m_socket.empty() || m_socket.size() >= sizeof address.sun_path) return;
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, m_socket.data(), m_socket.size());
    // "@" stands for the abstract name space.
    if (m_socket.front() == '@') address.sun_path[0] = '\0';
    const UniqueFd socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + m_socket.size());
    // One that does not listen any more misses nothing that this process could mend.
    if (socket)
        ::sendto(socket.get(), text.data(), text.size(), MSG_NOSIGNAL,
                 reinterpret_cast<const sockaddr*>(&address), length);
}

}  // namespace vigil
