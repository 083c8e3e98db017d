#include "host/helper/ScriptProcess.hpp"

#include <algorithm>
#include <filesystem>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "host/helper/Children.hpp"
#include "host/helper/ScriptFile.hpp"

namespace vigil {
namespace {

std::string outputOf(ScriptProcess& script) {
    std::string all;
    char bytes[1000];
    while (true) {
        const ssize_t count = ::read(script.output.get(), bytes, sizeof bytes);
        if (count > 0) all.append(bytes, static_cast<std::size_t>(count));
        if (count == 0) break;
        pollfd fd{script.output.get(), POLLIN, 0};
        ::poll(&fd, 1, 20000);
    }
    EXPECT_EQ(::waitpid(script.process, nullptr, 0), script.process);
    return all;
}

class ScriptStarts : public testing::Test {
  protected:
    void SetUp() override {
        char pattern[] = "/tmp/vigil-test-XXXXXX";
        ASSERT_NE(::mkdtemp(pattern), nullptr);
        m_folder = pattern;
        m_job.source = "#!/usr/bin/awk -f\nBEGIN { print ARGV[1] }";
        m_job.arguments = {"a b"};
        m_job.environment = {"PATH=/usr/bin:/bin"};
    }
    void TearDown() override { std::filesystem::remove_all(m_folder); }

    std::string m_folder;
    ScriptJob m_job;
};

TEST_F(ScriptStarts, WhereTheFileMayNotBeExecutedItsProgramIsCalled) {
    auto file = ScriptFile::write({m_folder + "/x"}, m_job.source);
    ASSERT_TRUE(file);
    ASSERT_EQ(::chmod(file.value().path().c_str(), 0600), 0);
    auto script = startScript(m_job, file.value().path());
    ASSERT_TRUE(script) << script.error().message;
    EXPECT_EQ(outputOf(script.value()), "a b\n");
}

TEST_F(ScriptStarts, WhereTheFileIsOpenForWritingItsProgramIsCalled) {
    auto file = ScriptFile::write({m_folder + "/x"}, m_job.source);
    ASSERT_TRUE(file);
    const UniqueFd writer(::open(file.value().path().c_str(), O_WRONLY | O_CLOEXEC));
    ASSERT_TRUE(writer);
    auto script = startScript(m_job, file.value().path());
    ASSERT_TRUE(script) << script.error().message;
    EXPECT_EQ(outputOf(script.value()), "a b\n");
}

TEST_F(ScriptStarts, AFirstLineThatNamesNoProgramIsAShellComment) {
    m_job.source = "#!\necho \"$1\"";
    auto file = ScriptFile::write({m_folder + "/x"}, m_job.source);
    auto script = startScript(m_job, file.value().path());
    ASSERT_TRUE(script) << script.error().message;
    EXPECT_EQ(outputOf(script.value()), "a b\n");
}

TEST_F(ScriptStarts, AProgramThatMayNotBeExecutedIsNamed) {
    m_job.source = "#!/etc/passwd\n";
    auto file = ScriptFile::write({m_folder + "/x"}, m_job.source);
    const auto script = startScript(m_job, file.value().path());
    ASSERT_FALSE(script);
    EXPECT_EQ(script.error().message, "/etc/passwd cannot run it: Permission denied");
}

TEST(Children, BothWaysOfLookingFindThemAndTheEndedAreTakenAway) {
    const pid_t ends = ::fork();
    if (ends == 0) ::_exit(0);
    const pid_t stays = ::fork();
    if (stays == 0) {
        ::pause();
        ::_exit(0);
    }
    siginfo_t info{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(ends), &info, WEXITED | WNOWAIT), 0);
    for (auto list : {childProcesses(), childProcessesByWalk()}) {
        std::sort(list.begin(), list.end());
        EXPECT_EQ(list, (std::vector<pid_t>{std::min(ends, stays), std::max(ends, stays)}));
    }
    EXPECT_EQ(reapOthers(ends), std::vector<pid_t>{stays}) << "the one that is kept is not listed";
    EXPECT_EQ(childProcesses().size(), 2u) << "and still there";
    EXPECT_EQ(reapOthers(stays), std::vector<pid_t>{});
    EXPECT_EQ(childProcesses(), std::vector<pid_t>{stays});
    ::kill(stays, SIGKILL);
    ::waitpid(stays, nullptr, 0);
}

}  // namespace
}  // namespace vigil
