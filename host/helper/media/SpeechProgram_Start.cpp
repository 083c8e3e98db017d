#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "host/helper/media/SpeechProgram.hpp"

namespace vigil {
namespace {

struct Pipe {
    UniqueFd read, write;
};

bool makePipe(Pipe& pipe) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return false;
    pipe.read = UniqueFd(ends[0]);
    pipe.write = UniqueFd(ends[1]);
    return true;
}

/// All that the new process needs, made before the fork: between fork and exec only system calls.
struct Launch {
    std::vector<char*> words;
    int input, output, errors, report;
    pid_t parent;
};

[[noreturn]] void become(const Launch& launch) {
    ::setsid();
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != launch.parent) ::_exit(127);  // it died before the line above
    for (int number = 1; number < NSIG; ++number)
        ::signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    // the player bounds itself, not what it runs
    rlimit memory{};
    if (::getrlimit(RLIMIT_DATA, &memory) == 0) {
        memory.rlim_cur = memory.rlim_max;
        ::setrlimit(RLIMIT_DATA, &memory);
    }
    ::dup2(launch.input, 0);
    ::dup2(launch.output, 1);
    ::dup2(launch.errors, 2);
    ::execvp(launch.words[0], launch.words.data());
    const int failed = errno;
    while (::write(launch.report, &failed, sizeof failed) < 0 && errno == EINTR) {
    }
    ::_exit(127);
}

PlayEnd systemError(const char* what) {
    return {PlayOutcome::Failed, std::string(what) + ": " + std::strerror(errno)};
}

}  // namespace

std::vector<std::string> speechCommand(const PlayerSetup& setup) {
    std::vector<std::string> words{setup.program, "--stdin", "--stdout", "-b", "1"};  // 1: UTF-8
    const std::string& voice = setup.voice.empty() ? setup.language : setup.voice;
    if (!voice.empty()) words.insert(words.end(), {"-v", voice});
    if (setup.rate != 0) words.insert(words.end(), {"-s", std::to_string(setup.rate)});
    return words;
}

Result<SpeechProgram, PlayEnd> SpeechProgram::start(const PlayerSetup& setup, std::string text) {
    Pipe input, output, errors, report;
    if (!makePipe(input) || !makePipe(output) || !makePipe(errors) || !makePipe(report))
        return systemError("no pipe for the program that speaks");
    std::vector<std::string> words = speechCommand(setup);
    Launch launch{{},        input.read.get(), output.write.get(), errors.write.get(), report.write.get(),
                  ::getpid()};
    for (std::string& word : words)
        launch.words.push_back(word.data());
    launch.words.push_back(nullptr);
    const pid_t number = ::fork();
    if (number < 0) return systemError("no process for the program that speaks");
    if (number == 0) become(launch);
    SpeechProgram made;
    made.m_process = Process(number);
    report.write.reset();
    int failed = 0;
    ssize_t count = 0;
    // ends when exec has closed the other end
    while ((count = ::read(report.read.get(), &failed, sizeof failed)) < 0 && errno == EINTR) {
    }
    if (count == sizeof failed)
        return PlayEnd{PlayOutcome::NoProgram,
                       failed == ENOENT ? "there is no program " + setup.program
                                        : setup.program + " cannot be run: " + std::strerror(failed)};
    made.m_ended = UniqueFd(static_cast<int>(::syscall(SYS_pidfd_open, number, 0)));
    if (!made.m_ended) return systemError("the program that speaks cannot be watched");
    for (const int fd : {input.write.get(), output.read.get(), errors.read.get()})
        ::fcntl(fd, F_SETFL, O_NONBLOCK);
    made.m_input = std::move(input.write);
    made.m_output = std::move(output.read);
    made.m_errors = std::move(errors.read);
    made.m_program = setup.program;
    made.m_text = std::move(text);
    made.m_deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(setup.programTime);
    return made;
}

}  // namespace vigil
