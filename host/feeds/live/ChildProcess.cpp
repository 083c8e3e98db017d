#include "host/feeds/live/ChildProcess.hpp"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vigil {
namespace {

struct Pipe {
    UniqueFd read, write;
};

std::optional<Pipe> makePipe() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return std::nullopt;
    return Pipe{UniqueFd(ends[0]), UniqueFd(ends[1])};
}

void neverBlock(int fd) {
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
}

// All that the child needs, made before there is one.
struct Child {
    std::vector<char*> words, environment;
    const char* folder;
    pid_t parent;
    int output, errors, failure;
};

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> all;
    for (std::string& text : texts)
        all.push_back(text.data());
    all.push_back(nullptr);
    return all;
}

// In the child, which has one thread and whatever locks the others held: system calls and nothing else.
[[noreturn]] void become(const Child& child) {
    ::setsid();
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != child.parent) ::_exit(127);  // it has died meanwhile
    for (int number = 1; number < NSIG; ++number)
        ::signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    const int nothing = ::open("/dev/null", O_RDONLY);
    ::dup2(nothing, 0);
    ::dup2(child.output, 1);
    ::dup2(child.errors, 2);
    ::dup2(child.failure, 3);
    ::fcntl(3, F_SETFD, FD_CLOEXEC);
    ::syscall(SYS_close_range, 4U, ~0U, 0U);
    if (*child.folder == '\0' || ::chdir(child.folder) == 0)
        ::execvpe(child.words.front(), child.words.data(), child.environment.data());
    const int reason = errno;
    [[maybe_unused]] const ssize_t told = ::write(3, &reason, sizeof reason);
    ::_exit(127);
}

// What the child says when it cannot become the program; 0 when it has.
int readFailure(int fd) {
    int reason = 0;
    ssize_t count = 0;
    while ((count = ::read(fd, &reason, sizeof reason)) < 0 && errno == EINTR) {
    }
    return count == sizeof reason ? reason : 0;
}

void waitFor(int process, pid_t number) {
    pollfd ended{process, POLLIN, 0};
    ::poll(&ended, 1, static_cast<int>(ChildProcess::kLongestReap.count()));
    ::waitpid(number, nullptr, WNOHANG);
}

}  // namespace

Result<ChildProcess> ChildProcess::start(const Plan& plan) {
    const auto failure = [&plan](int reason) {
        return Error{"\"" + plan.words.front() + "\" cannot be started: " + std::strerror(reason)};
    };
    auto output = makePipe(), errors = makePipe(), told = makePipe();
    if (!output || !errors || !told) return failure(errno);
    std::vector<std::string> words = plan.words, entries;
    for (const auto& [name, value] : plan.environment)
        entries.push_back(name + "=" + value);
    const Child child{pointers(words),     pointers(entries),   plan.folder.c_str(), ::getpid(),
                      output->write.get(), errors->write.get(), told->write.get()};
    const pid_t number = ::fork();
    if (number < 0) return failure(errno);
    if (number == 0) become(child);
    told->write.reset();
    output->write.reset();
    errors->write.reset();
    UniqueFd process(static_cast<int>(::syscall(SYS_pidfd_open, number, 0)));
    const int noWatch = process ? 0 : errno;
    if (const int reason = noWatch != 0 ? noWatch : readFailure(told->read.get())) {
        ::kill(number, SIGKILL);  // not waited for yet, so the number is still its own
        ::waitpid(number, nullptr, 0);
        return failure(reason);
    }
    neverBlock(output->read.get());
    neverBlock(errors->read.get());
    return ChildProcess(number, std::move(process), std::move(output->read), std::move(errors->read));
}

ChildProcess::ChildProcess(pid_t number, UniqueFd process, UniqueFd output, UniqueFd errors)
    : m_number(number),
      m_process(std::move(process)),
      m_output(std::move(output)),
      m_errors(std::move(errors)) {}

ChildProcess::ChildProcess(ChildProcess&&) noexcept = default;

ChildProcess::~ChildProcess() {
    if (!m_process) return;  // moved from
    signal(SIGKILL);
    waitFor(m_process.get(), m_number);
}

void ChildProcess::signal(int number) {
    ::kill(-m_number, number);
}

std::optional<std::string> ChildProcess::ending() {
    siginfo_t info{};
    const auto process = static_cast<id_t>(m_process.get());
    if (::waitid(P_PIDFD, process, &info, WEXITED | WNOHANG | WNOWAIT) != 0) return "ended";
    if (info.si_pid == 0) return std::nullopt;
    if (info.si_code == CLD_EXITED) return "ended with exit status " + std::to_string(info.si_status);
    return "was ended by signal " + std::to_string(info.si_status);
}

}  // namespace vigil
