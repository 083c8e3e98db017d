#include "host/helper/HostSocket.hpp"

#include <cerrno>

#include <fcntl.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

namespace vigil {
namespace {

// A script may send its parent any signal, and a terminal or a service manager sends them to all alike: none
// ends the helper, so that it can clear up. Only what a fault of the helper itself raises stays as it is.
void blockSignals() {
    sigset_t all;
    sigfillset(&all);
    for (int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS})
        sigdelset(&all, fault);
    ::sigprocmask(SIG_SETMASK, &all, nullptr);
    // ignored, as it may have been inherited, it would take away what is to be waited for
    ::signal(SIGCHLD, SIG_DFL);
}

void fillStandardDescriptors() {
    int fd = 0;
    while (fd >= 0 && fd <= 2)
        fd = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    if (fd > 2) ::close(fd);
}

}  // namespace

void guardProcess() {
    blockSignals();
    fillStandardDescriptors();
}

std::optional<std::string> receiveMessage(int socket) {
    WireBuffer buffer;
    return receiveMessage(socket, buffer);
}

std::optional<std::string> receiveMessage(int socket, WireBuffer& buffer) {
    while (!buffer.broken()) {
        if (std::optional<std::string> message = buffer.next()) return message;
        char bytes[64 << 10];
        const ssize_t count = ::recv(socket, bytes, sizeof bytes, 0);
        if (count > 0)
            buffer.append({bytes, static_cast<std::size_t>(count)});
        else if (count == 0 || errno != EINTR)
            break;
    }
    return std::nullopt;
}

bool sendAll(int socket, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count > 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EINTR)
            return false;
    }
    return true;
}

}  // namespace vigil
