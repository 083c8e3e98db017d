#include "host/run/HealthPort.hpp"

#include <string>

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace vigil {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::string get(std::uint16_t port, const std::string& path, const std::string& method = "GET") {
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    std::string answer;
    if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) {
        const std::string request = method + " " + path + " HTTP/1.0\r\n\r\n";
        EXPECT_EQ(::send(fd, request.data(), request.size(), 0), static_cast<ssize_t>(request.size()));
        char buffer[4096];
        for (ssize_t count; (count = ::recv(fd, buffer, sizeof buffer, 0)) > 0;)
            answer.append(buffer, static_cast<std::size_t>(count));
    }
    ::close(fd);
    return answer;
}

TEST(HealthPort, ThreePagesAreThereAndAllElseIsNot) {
    SiteStatus status{.site = "home.vigilsite", .version = "1"};
    const auto port = HealthPort::open(0, [&] { return Result<SiteStatus>(status); });
    ASSERT_TRUE(port) << port.error().message;
    const auto number = port.value()->port();
    EXPECT_THAT(get(number, "/metrics"), HasSubstr("vigil_info{version=\"1\"} 1"));
    EXPECT_THAT(get(number, "/status"), HasSubstr("\"site\":\"home.vigilsite\""));
    EXPECT_THAT(get(number, "/health"), HasSubstr("200 OK"));
    EXPECT_THAT(get(number, "/"), HasSubstr("404"));
    EXPECT_THAT(get(number, "/health", "DELETE"), HasSubstr("405"));
}

TEST(HealthPort, WhatIsWrongIsNoHealth) {
    SiteStatus status;
    status.problems = {"the disk is full"};
    const auto port = HealthPort::open(0, [&] { return Result<SiteStatus>(status); });
    ASSERT_TRUE(port);
    const std::string answer = get(port.value()->port(), "/health");
    EXPECT_THAT(answer, HasSubstr("503"));
    EXPECT_THAT(answer, HasSubstr("the disk is full\n"));
}

TEST(HealthPort, AMainThreadThatDoesNotAnswerIsNoHealth) {
    const auto port =
        HealthPort::open(0, [] { return Result<SiteStatus>(Error{"the main thread does not answer"}); });
    ASSERT_TRUE(port);
    EXPECT_THAT(get(port.value()->port(), "/health"), HasSubstr("503"));
    EXPECT_THAT(get(port.value()->port(), "/metrics"), HasSubstr("503"));
}

TEST(HealthPort, APortThatIsTakenIsAnErrorThatNamesIt) {
    const auto status = [] { return Result<SiteStatus>(SiteStatus{}); };
    const auto first = HealthPort::open(0, status);
    ASSERT_TRUE(first);
    const auto second = HealthPort::open(first.value()->port(), status);
    ASSERT_FALSE(second);
    EXPECT_THAT(second.error().message, StartsWith("127.0.0.1:" + std::to_string(first.value()->port())));
}

}  // namespace
}  // namespace vigil
