#include "host/services/HelperProcess.hpp"

#include <cerrno>
#include <cstring>
#include <mutex>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vigil {
namespace {

Error failure(const std::string& what, int reason) {
    return {what + ": " + std::strerror(reason)};
}

// The helper in a session of its own, with the socket as its input and no other descriptor of the host but
// standard error. Gives 0 or the reason.
int spawn(const std::string& path, const char* command, int socket, pid_t& number) {
    posix_spawnattr_t how;
    posix_spawn_file_actions_t files;
    posix_spawnattr_init(&how);
    posix_spawn_file_actions_init(&files);
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setflags(&how, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    posix_spawnattr_setsigmask(&how, &none);
    posix_spawnattr_setsigdefault(&how, &all);
    posix_spawn_file_actions_adddup2(&files, socket, 0);
    posix_spawn_file_actions_addopen(&files, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addclosefrom_np(&files, 3);
    std::string program = path;
    std::string word = command;
    char* words[] = {program.data(), word.data(), nullptr};
    const int failed = ::posix_spawn(&number, path.c_str(), &files, &how, words, environ);
    posix_spawn_file_actions_destroy(&files);
    posix_spawnattr_destroy(&how);
    return failed;
}

std::string endingText(const siginfo_t& info) {
    if (info.si_code == CLD_EXITED) return "ended with exit status " + std::to_string(info.si_status);
    return "was ended by signal " + std::to_string(info.si_status);
}

/// Those that were killed and have not ended.
class Dying {
  public:
    void add(UniqueFd process) {
        const std::lock_guard lock(m_mutex);
        m_processes.push_back(std::move(process));
    }
    void reap() {
        const std::lock_guard lock(m_mutex);
        std::erase_if(m_processes, [](const UniqueFd& process) {
            siginfo_t info{};
            return ::waitid(P_PIDFD, static_cast<id_t>(process.get()), &info, WEXITED | WNOHANG) != 0 ||
                   info.si_pid != 0;
        });
    }

  private:
    std::mutex m_mutex;
    std::vector<UniqueFd> m_processes;
};

Dying& dying() {
    static Dying all;
    return all;
}

}  // namespace

Result<HelperProcess> HelperProcess::start(const std::string& path, const char* command,
                                           std::string message) {
    reap();
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        return failure("no socket for the helper", errno);
    UniqueFd ours(ends[0]);
    UniqueFd theirs(ends[1]);
    pid_t number = -1;
    if (const int failed = spawn(path, command, theirs.get(), number))
        return failure("the helper " + path + " cannot be started", failed);
    UniqueFd process(static_cast<int>(::syscall(SYS_pidfd_open, number, 0)));
    if (!process) {
        const int failed = errno;
        ::kill(number, SIGKILL);  // not waited for yet, so the number is still its own
        ::waitpid(number, nullptr, 0);
        return failure("the helper cannot be watched", failed);
    }
    return HelperProcess(number, std::move(process), std::move(ours), std::move(message));
}

HelperProcess::HelperProcess(pid_t number, UniqueFd process, UniqueFd socket, std::string message)
    : m_number(number),
      m_process(std::move(process)),
      m_socket(std::move(socket)),
      m_out(std::move(message)) {}

HelperProcess::~HelperProcess() {
    if (!m_process || ending()) return;
    kill();
    pollfd ended{m_process.get(), POLLIN, 0};
    ::poll(&ended, 1, static_cast<int>(kDyingTime.count()));
    if (!ending()) dying().add(std::move(m_process));
}

void HelperProcess::reap() {
    dying().reap();
}

short HelperProcess::socketEvents() const {
    return m_sent < m_out.size() ? POLLIN | POLLOUT : POLLIN;
}

void HelperProcess::exchange() {
    while (m_socket && m_sent < m_out.size()) {
        const ssize_t count =
            ::send(m_socket.get(), m_out.data() + m_sent, m_out.size() - m_sent, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count > 0)
            m_sent += static_cast<std::size_t>(count);
        else if (errno == EAGAIN)
            break;
        else if (errno != EINTR)
            m_sent = m_out.size();  // it takes nothing more; what it has said may still be there
    }
    if (m_sent == m_out.size() && !m_out.empty()) std::string().swap(m_out), m_sent = 0;
    char bytes[16 << 10];
    while (m_socket && !m_in.broken()) {
        const ssize_t count = ::recv(m_socket.get(), bytes, sizeof bytes, MSG_DONTWAIT);
        if (count > 0)
            m_in.append({bytes, static_cast<std::size_t>(count)});
        else if (count == 0 || (errno != EAGAIN && errno != EINTR))
            m_socket.reset();
        else if (errno == EAGAIN)
            return;
    }
}

void HelperProcess::closeInput() {
    if (m_socket) ::shutdown(m_socket.get(), SHUT_WR);
}

void HelperProcess::kill() {
    ::syscall(SYS_pidfd_send_signal, m_process.get(), SIGKILL, nullptr, 0);
}

std::optional<std::string> HelperProcess::ending() {
    if (m_ending) return m_ending;
    siginfo_t info{};
    const auto process = static_cast<id_t>(m_process.get());
    if (::waitid(P_PIDFD, process, &info, WEXITED | WNOHANG) == 0) {
        if (info.si_pid != 0) m_ending = endingText(info);
        if (info.si_pid != 0 && info.si_code != CLD_EXITED) m_signal = info.si_status;
    } else if (errno == ECHILD) {
        m_ending = "ended";  // somebody else in the process has waited for all children, or nobody may
    }
    return m_ending;
}

}  // namespace vigil
