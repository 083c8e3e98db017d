#pragma once

#include <chrono>
#include <csignal>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

// Programs that a test starts for its own use and ends by their numbers.

namespace vigil {

inline bool soon(const std::function<bool()>& holds,
                 std::chrono::seconds patience = std::chrono::seconds(40)) {
    const auto until = std::chrono::steady_clock::now() + patience;
    while (!holds()) {
        if (std::chrono::steady_clock::now() > until) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

/// A program in a process of its own, ended when this dies.
class TestProcess {
  public:
    /// Looked up in PATH; what it writes goes to `output`.
    explicit TestProcess(std::vector<std::string> words, const std::string& output = "/dev/null") {
        posix_spawn_file_actions_t files;
        posix_spawn_file_actions_init(&files);
        posix_spawn_file_actions_addopen(&files, 0, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&files, 1, output.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        posix_spawn_file_actions_adddup2(&files, 1, 2);
        std::vector<char*> list;
        for (std::string& word : words)
            list.push_back(word.data());
        list.push_back(nullptr);
        if (::posix_spawnp(&m_number, list[0], &files, nullptr, list.data(), environ) != 0) m_number = -1;
        posix_spawn_file_actions_destroy(&files);
        EXPECT_GT(m_number, 0) << words[0] << " cannot be started";
    }
    TestProcess(const TestProcess&) = delete;
    TestProcess& operator=(const TestProcess&) = delete;
    ~TestProcess() {
        if (m_number <= 0) return;
        ::kill(m_number, SIGKILL);
        ::waitpid(m_number, nullptr, 0);
    }

    /// Waits until it has ended by itself, and gives its exit status.
    int wait() {
        int status = 0;
        ::waitpid(m_number, &status, 0);
        m_number = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

  private:
    pid_t m_number = -1;
};

/// Whether a program can be run here. Where it cannot, a build server has to have it, and a test elsewhere
/// says so and is skipped.
inline bool canRun(std::vector<std::string> words) {
    return TestProcess(std::move(words)).wait() == 0;
}

}  // namespace vigil
