#pragma once

#include <cstdint>
#include <string>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "host/services/UniqueFd.hpp"

namespace vigil {

inline sockaddr_in loopback(std::uint16_t port, const char* address = "127.0.0.1") {
    sockaddr_in where{};
    where.sin_family = AF_INET;
    where.sin_port = htons(port);
    ::inet_pton(AF_INET, address, &where.sin_addr);
    return where;
}

/// A socket bound to a port of 127.0.0.1 (0: a free one), listening unless said otherwise.
inline UniqueFd takePort(std::uint16_t port = 0, bool listens = true) {
    UniqueFd socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const int yes = 1;
    ::setsockopt(socket.get(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    const sockaddr_in where = loopback(port);
    if (::bind(socket.get(), reinterpret_cast<const sockaddr*>(&where), sizeof where) != 0) return {};
    if (listens) ::listen(socket.get(), 16);
    return socket;
}

inline std::uint16_t portOf(const UniqueFd& socket) {
    sockaddr_in where{};
    socklen_t size = sizeof where;
    ::getsockname(socket.get(), reinterpret_cast<sockaddr*>(&where), &size);
    return ntohs(where.sin_port);
}

/// A port that nobody has at this moment.
inline std::uint16_t freePort() {
    return portOf(takePort());
}

/// A connection to 127.0.0.1, byte by byte.
class Talk {
  public:
    /// From another loopback address, so that it is another machine to whom it asks.
    explicit Talk(std::uint16_t port, const char* from = "127.0.0.1")
        : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        const sockaddr_in ours = loopback(0, from);
        const sockaddr_in theirs = loopback(port);
        ::bind(m_socket.get(), reinterpret_cast<const sockaddr*>(&ours), sizeof ours);
        m_connected =
            ::connect(m_socket.get(), reinterpret_cast<const sockaddr*>(&theirs), sizeof theirs) == 0;
    }

    bool connected() const { return m_connected; }
    /// Gives whether the other end still takes it.
    bool send(const std::string& bytes) {
        return ::send(m_socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL) ==
               static_cast<ssize_t>(bytes.size());
    }
    /// What comes until there is `upTo` in it, the other end closes, or nothing comes for so long.
    std::string read(const std::string& upTo = "", int milliseconds = 5000) {
        std::string all;
        char bytes[4096];
        pollfd ready{m_socket.get(), POLLIN, 0};
        while (::poll(&ready, 1, milliseconds) > 0) {
            const ssize_t count = ::recv(m_socket.get(), bytes, sizeof bytes, 0);
            if (count <= 0) break;
            all.append(bytes, static_cast<std::size_t>(count));
            if (!upTo.empty() && all.find(upTo) != std::string::npos) break;
        }
        return all;
    }
    /// Whether the other end closes within so long.
    bool closes(int milliseconds) {
        char bytes[4096];
        pollfd ready{m_socket.get(), POLLIN, 0};
        while (::poll(&ready, 1, milliseconds) > 0)
            if (::recv(m_socket.get(), bytes, sizeof bytes, 0) <= 0) return true;
        return false;
    }

  private:
    UniqueFd m_socket;
    bool m_connected = false;
};

/// One request on a connection of its own; gives the whole answer.
inline std::string ask(std::uint16_t port, const std::string& request, const char* from = "127.0.0.1") {
    Talk talk(port, from);
    talk.send(request);
    return talk.read();
}

inline std::string getRequest(const std::string& target) {
    return "GET " + target + " HTTP/1.1\r\nHost: vigil\r\nConnection: close\r\n\r\n";
}

inline std::string postRequest(const std::string& target, const std::string& body) {
    return "POST " + target +
           " HTTP/1.1\r\nHost: vigil\r\nConnection: close\r\nContent-Type: "
           "application/x-www-form-urlencoded\r\n"
           "Content-Length: " +
           std::to_string(body.size()) + "\r\n\r\n" + body;
}

/// "200 success\n" of an answer.
inline std::string statusAndBody(const std::string& answer) {
    const std::size_t body = answer.find("\r\n\r\n");
    if (!answer.starts_with("HTTP/1.") || body == std::string::npos) return answer;
    return answer.substr(9, 4) + answer.substr(body + 4);
}

}  // namespace vigil
