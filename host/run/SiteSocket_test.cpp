#include "host/run/SiteSocket.hpp"

#include <fstream>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

TEST(SiteSocket, AQuestionGetsItsAnswer) {
    const TemporaryFolder folder;
    const std::string site = folder.path() + "/home.vigilsite";
    const auto socket =
        SiteSocket::open(site, [](const std::string& question) { return "<" + question + ">"; });
    ASSERT_TRUE(socket) << socket.error().message;
    for (const char* question : {"status", "reload", ""}) {
        const auto answer = SiteSocket::ask(site, question);
        ASSERT_TRUE(answer) << answer.error().message;
        EXPECT_EQ(answer.value(), "<" + std::string(question) + ">");
    }
}

TEST(SiteSocket, AnAnswerMayBeLong) {
    const TemporaryFolder folder;
    const std::string site = folder.path() + "/home.vigilsite";
    const std::string longText(3'000'000, 'x');
    const auto socket = SiteSocket::open(site, [&](const std::string&) { return longText; });
    ASSERT_TRUE(socket);
    const auto answer = SiteSocket::ask(site, "status");
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer.value(), longText);
}

TEST(SiteSocket, ManyAskAtOnce) {
    const TemporaryFolder folder;
    const std::string site = folder.path() + "/home.vigilsite";
    const auto socket = SiteSocket::open(site, [](const std::string& question) { return question; });
    ASSERT_TRUE(socket);
    std::vector<std::thread> askers;
    std::atomic<int> answered = 0;
    for (int i = 0; i < 8; ++i)
        askers.emplace_back([&, i] {
            const auto answer = SiteSocket::ask(site, "q" + std::to_string(i));
            if (answer && answer.value() == "q" + std::to_string(i)) ++answered;
        });
    for (std::thread& asker : askers)
        asker.join();
    EXPECT_EQ(answered, 8);
}

TEST(SiteSocket, OnlyItsUserMayConnectAndItGoesWithItsOwner) {
    const TemporaryFolder folder;
    const std::string site = folder.path() + "/home.vigilsite";
    const std::string path = SiteSocket::pathOf(site);
    {
        const auto socket = SiteSocket::open(site, [](const std::string&) { return "x"; });
        ASSERT_TRUE(socket);
        struct stat status {};
        ASSERT_EQ(::stat(path.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777, 0600u);
    }
    EXPECT_NE(::access(path.c_str(), F_OK), 0);
    EXPECT_FALSE(SiteSocket::ask(site, "status"));
}

TEST(SiteSocket, OneThatADeadProcessLeftIsReplaced) {
    const TemporaryFolder folder;
    const std::string site = folder.path() + "/home.vigilsite";
    std::ofstream(SiteSocket::pathOf(site)) << "left behind";
    const auto socket = SiteSocket::open(site, [](const std::string&) { return "here"; });
    ASSERT_TRUE(socket) << socket.error().message;
    EXPECT_EQ(SiteSocket::ask(site, "status").value(), "here");
}

TEST(SiteSocket, APathLongerThanAnAddressWorks) {
    const TemporaryFolder folder;
    const std::string deep = folder.path() + "/" + std::string(150, 'd');
    ASSERT_EQ(::mkdir(deep.c_str(), 0700), 0);
    const auto socket = SiteSocket::open(deep + "/home.vigilsite", [](const std::string&) { return "deep"; });
    ASSERT_TRUE(socket) << socket.error().message;
    EXPECT_EQ(SiteSocket::ask(deep + "/home.vigilsite", "status").value(), "deep");
}

}  // namespace
}  // namespace vigil
