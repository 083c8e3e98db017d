#include "host/services/HelperProcess.hpp"

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <unistd.h>

#include "host/services/ScriptWire.hpp"
#include "host/services/testing/ScriptBench.hpp"

namespace vigil {
namespace {

class HelperAlone : public ScriptBench {
  protected:
    ScriptJob job(std::string source) const {
        ScriptJob made;
        made.mark = "alone-" + std::to_string(::getpid());
        made.source = std::move(source);
        made.environment = {"PATH=/usr/bin:/bin", "D=" + m_folder, m_mark};
        made.timeout = 600000;
        made.termGrace = 300;
        made.leftoverGrace = 200;
        return made;
    }
    std::optional<std::string> nextMessage(HelperProcess& helper) {
        std::optional<std::string> message;
        eventually([&] {
            helper.exchange();
            message = helper.next();
            return message || helper.socket() < 0;
        });
        return message;
    }
};

TEST_F(HelperAlone, TheScriptDiesWithAHelperThatIsKilled) {
    auto helper = HelperProcess::start(builtHelper(), "script",
                                       encodeScriptJob(job("echo > $D/begun; exec sleep 1000")));
    ASSERT_TRUE(helper) << helper.error().message;
    const auto message = nextMessage(helper.value());
    ASSERT_TRUE(message);
    EXPECT_TRUE(isScriptStarts(*message));
    ASSERT_TRUE(appears("begun"));
    // While a process changes its program, its environment cannot be read for a moment.
    EXPECT_TRUE(eventually([&] { return somethingBears(m_mark); }));
    helper.value().kill();
    EXPECT_TRUE(eventually([&] { return helper.value().ending().has_value(); }));
    EXPECT_EQ(helper.value().ending(), "was ended by signal 9");
    EXPECT_TRUE(eventually([&] { return !somethingBears(m_mark); }));
    for (const std::string& folder : scriptFolders(job("").mark))
        std::filesystem::remove_all(folder);
}

TEST_F(HelperAlone, EndsTheScriptAndItselfWhenTheHostIsGone) {
    int ends[2];
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, ends[1], 0);
    std::string program = builtHelper();
    char word[] = "script";
    char* words[] = {program.data(), word, nullptr};
    pid_t number = -1;
    ASSERT_EQ(::posix_spawn(&number, program.c_str(), &files, nullptr, words, environ), 0);
    posix_spawn_file_actions_destroy(&files);
    ::close(ends[1]);
    const std::string request =
        encodeScriptJob(job("setsid sh -c 'trap \"\" TERM; while :; do sleep 1; done' &\ntrap '' TERM\n"
                            "echo > $D/begun; while :; do sleep 1; done"));
    ASSERT_EQ(::send(ends[0], request.data(), request.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(request.size()));
    ASSERT_TRUE(appears("begun"));
    EXPECT_TRUE(somethingBears(m_mark));
    ::close(ends[0]);
    EXPECT_TRUE(eventually([&] { return ::waitpid(number, nullptr, WNOHANG) == number; }));
    EXPECT_FALSE(somethingBears(m_mark));
}

TEST_F(HelperAlone, LeavesNobodyWhoseParentEndedWhileItLooked) {
    int ends[2];
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, ends[1], 0);
    std::string program = builtHelper();
    char word[] = "script";
    char* words[] = {program.data(), word, nullptr};
    pid_t number = -1;
    ASSERT_EQ(::posix_spawn(&number, program.c_str(), &files, nullptr, words, environ), 0);
    posix_spawn_file_actions_destroy(&files);
    ::close(ends[1]);
    const std::string request = encodeScriptJob(
        job("echo 'if [ $1 -gt 0 ]; then setsid sh $D/chain $(($1 - 1)) & else echo > $D/begun; fi; "
            "sleep 1000 & wait' > $D/chain\nsh $D/chain 40"));
    ASSERT_EQ(::send(ends[0], request.data(), request.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(request.size()));
    ASSERT_TRUE(appears("begun"));
    EXPECT_TRUE(somethingBears(m_mark));
    ::close(ends[0]);
    EXPECT_TRUE(eventually([&] { return ::waitpid(number, nullptr, WNOHANG) == number; }));
    EXPECT_FALSE(somethingBears(m_mark));
}

TEST_F(HelperAlone, AJobOfAnotherVersionIsAnsweredInWords) {
    auto helper = HelperProcess::start(builtHelper(), "script",
                                       WireWriter('J').number(kScriptWireVersion + 1).text("x").take());
    ASSERT_TRUE(helper);
    const auto message = nextMessage(helper.value());
    ASSERT_TRUE(message);
    const auto result = decodeScriptResult(*message);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->outcome, ScriptResult::NotStarted);
    EXPECT_EQ(result->failure, "the helper does not understand the host; both must be of one version");
    EXPECT_TRUE(eventually([&] { return helper.value().ending().has_value(); }));
}

TEST_F(HelperAlone, AHelperThatIsGivenUpIsKilledAndWaitedFor) {
    pid_t number = -1;
    {
        auto helper = HelperProcess::start(builtHelper(), "script", encodeScriptJob(job("exec sleep 1000")));
        ASSERT_TRUE(helper);
        ASSERT_TRUE(nextMessage(helper.value()));
        number = helper.value().number();
    }
    EXPECT_NE(::kill(number, 0), 0);
    EXPECT_TRUE(eventually([&] { return !somethingBears(m_mark); }));
    for (const std::string& folder : scriptFolders(job("").mark))
        std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace vigil
