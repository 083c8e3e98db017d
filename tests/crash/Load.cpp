#include "tests/crash/Load.hpp"

#include <cerrno>
#include <chrono>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vigil {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kStartMilliseconds = 20'000;

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t begin = 0, end; (end = text.find('\n', begin)) != std::string::npos; begin = end + 1)
        lines.push_back(text.substr(begin, end - begin));
    return lines;
}

}  // namespace

Load::Load(const std::string& site) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    m_process = fork();
    if (m_process == 0) {
        dup2(ends[1], STDOUT_FILENO);
        execl(SITE_LOAD, SITE_LOAD, site.c_str(), nullptr);
        _exit(127);
    }
    close(ends[1]);
    m_output = ends[0];
    if (m_process < 0) throw std::runtime_error("no process");
}

Load::~Load() {
    end();
    close(m_output);
}

void Load::end() {
    if (m_process < 0) return;
    kill(m_process, SIGKILL);
    waitpid(m_process, nullptr, 0);
    m_process = -1;
}

std::vector<std::string> Load::killAfter(int milliseconds) {
    std::string text;
    auto until = Clock::now() + std::chrono::milliseconds(kStartMilliseconds);
    char chunk[1 << 16];
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(until - Clock::now()).count();
        pollfd waiting = {m_output, POLLIN, 0};
        // Once it is killed the pipe gives what is left and then its end.
        if (m_process >= 0 && (left <= 0 || poll(&waiting, 1, static_cast<int>(left)) == 0)) {
            end();
            continue;
        }
        const ssize_t count = read(m_output, chunk, sizeof chunk);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        if (text.empty()) until = Clock::now() + std::chrono::milliseconds(milliseconds);
        text.append(chunk, static_cast<std::size_t>(count));
    }
    if (text.empty()) throw std::runtime_error("the load said nothing");
    return linesOf(text);
}

}  // namespace vigil
