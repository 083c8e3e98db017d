#include "host/run/ServiceManager.hpp"

#include <cstdlib>
#include <cstring>
#include <string>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

/// The manager's side: a datagram socket.
class Listening {
  public:
    explicit Listening(const std::string& path) {
        m_fd = ::socket(AF_UNIX, SOCK_DGRAM, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, path.c_str(), path.size());
        if (path.front() == '@') address.sun_path[0] = '\0';
        const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
        EXPECT_EQ(::bind(m_fd, reinterpret_cast<sockaddr*>(&address), length), 0);
        timeval patience{2, 0};
        ::setsockopt(m_fd, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    }
    ~Listening() { ::close(m_fd); }
    std::string next() {
        char buffer[1000];
        const ssize_t count = ::recv(m_fd, buffer, sizeof buffer, 0);
        return count < 0 ? "nothing" : std::string(buffer, static_cast<std::size_t>(count));
    }

  private:
    int m_fd;
};

void expectWords(const std::string& socket) {
    Listening listening(socket);
    ::setenv("NOTIFY_SOCKET", socket.c_str(), 1);
    ::setenv("WATCHDOG_USEC", "30000000", 1);
    ServiceManager manager;
    EXPECT_EQ(std::getenv("NOTIFY_SOCKET"), nullptr) << "a child could answer";
    EXPECT_EQ(manager.aliveEvery(), std::chrono::seconds(15));
    manager.ready("watching");
    EXPECT_EQ(listening.next(), "READY=1\nSTATUS=watching");
    manager.alive();
    EXPECT_EQ(listening.next(), "WATCHDOG=1");
    manager.reloading();
    EXPECT_TRUE(listening.next().starts_with("RELOADING=1\nMONOTONIC_USEC="));
    manager.stopping();
    EXPECT_EQ(listening.next(), "STOPPING=1");
}

TEST(ServiceManager, HearsOfReadinessLifeAndTheEnd) {
    const TemporaryFolder folder;
    expectWords(folder.path() + "/notify");
}

TEST(ServiceManager, HearsThroughTheAbstractNameSpaceToo) {
    expectWords("@vigil-test-" + std::to_string(::getpid()));
}

TEST(ServiceManager, WhereNoneStartedTheProcessNothingIsSent) {
    ::unsetenv("NOTIFY_SOCKET");
    ::unsetenv("WATCHDOG_USEC");
    ServiceManager manager;
    EXPECT_FALSE(manager.aliveEvery());
    manager.ready("watching");
    manager.stopping();
}

TEST(ServiceManager, AWatchdogOfAnotherProcessIsNotOurs) {
    ::setenv("WATCHDOG_USEC", "30000000", 1);
    ::setenv("WATCHDOG_PID", "1", 1);
    EXPECT_FALSE(ServiceManager().aliveEvery());
}

}  // namespace
}  // namespace vigil
