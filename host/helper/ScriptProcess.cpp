#include "host/helper/ScriptProcess.hpp"

#include <cerrno>
#include <cstring>
#include <vector>

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "host/helper/ScriptFile.hpp"

namespace vigil {
namespace {

using Words = std::vector<std::string>;

// The command lines to try, best first.
std::vector<Words> commandLines(const ScriptJob& job, const std::string& path) {
    std::vector<Words> lines;
    if (job.source.starts_with("#!")) lines.push_back({path});
    if (const std::optional<ScriptInterpreter> interpreter = scriptInterpreter(job.source)) {
        lines.push_back({interpreter->program});
        if (interpreter->argument) lines.back().push_back(*interpreter->argument);
        lines.back().push_back(path);
    } else {
        lines.push_back({"/bin/sh", path});
    }
    for (Words& line : lines)
        line.insert(line.end(), job.arguments.begin(), job.arguments.end());
    return lines;
}

std::vector<char*> pointers(Words& words) {
    std::vector<char*> list;
    for (std::string& word : words)
        list.push_back(word.data());
    list.push_back(nullptr);
    return list;
}

std::string homeOf(const ScriptJob& job) {
    std::string home = "/";
    for (const std::string& entry : job.environment)
        if (entry.starts_with("HOME=/")) home = entry.substr(5);
    return home;
}

// All that the new process needs, made before the fork: between fork and exec only system calls.
struct Launch {
    std::vector<std::vector<char*>> lines;
    std::vector<char*> environment;
    const char* home;
    int input, output, report;
    pid_t parent;
};

// Refusals that have to do with the file and not with what it names.
bool isWorthAnotherTry(int failed) {
    return failed == EACCES || failed == EPERM || failed == ETXTBSY || failed == ENOEXEC;
}

[[noreturn]] void become(const Launch& launch) {
    ::setsid();
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != launch.parent) ::_exit(127);  // it died before the line above
    for (int number = 1; number < NSIG; ++number)
        ::signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    ::dup2(launch.input, 0);
    ::dup2(launch.output, 1);
    ::dup2(launch.output, 2);
    if (::chdir(launch.home) != 0 && ::chdir("/") != 0) ::_exit(127);
    int failed = 0;
    for (const auto& line : launch.lines) {
        ::execve(line[0], line.data(), launch.environment.data());
        failed = errno;
        if (!isWorthAnotherTry(failed)) break;
    }
    while (::write(launch.report, &failed, sizeof failed) < 0 && errno == EINTR) {
    }
    ::_exit(127);
}

std::string whyNot(int failed, const ScriptJob& job) {
    const std::optional<ScriptInterpreter> interpreter = scriptInterpreter(job.source);
    const std::string program = interpreter ? interpreter->program : "/bin/sh";
    if (failed == ENOENT && program.ends_with('\r'))
        return "its first line ends with a carriage return; its lines must end as on Linux";
    if (failed == ENOENT) return "there is no program " + program;
    if (failed == E2BIG) return "its arguments and environment are too long for Linux";
    return program + " cannot run it: " + std::strerror(failed);
}

Error systemError(const char* what) {
    return {std::string(what) + ": " + std::strerror(errno)};
}

}  // namespace

Result<ScriptProcess> startScript(const ScriptJob& job, const std::string& path) {
    int output[2];
    int report[2];
    if (::pipe2(output, O_CLOEXEC) != 0) return systemError("no pipe for its output");
    UniqueFd readEnd(output[0]);
    UniqueFd writeEnd(output[1]);
    if (::pipe2(report, O_CLOEXEC) != 0) return systemError("no pipe for its start");
    UniqueFd reportRead(report[0]);
    UniqueFd reportWrite(report[1]);
    UniqueFd nothing(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    if (!nothing) return systemError("/dev/null cannot be read");
    ::fcntl(readEnd.get(), F_SETFL, O_NONBLOCK);

    std::vector<Words> lines = commandLines(job, path);
    Words environment = job.environment;
    const std::string home = homeOf(job);
    Launch launch{{},        pointers(environment), home.c_str(), nothing.get(), writeEnd.get(), report[1],
                  ::getpid()};
    for (Words& line : lines)
        launch.lines.push_back(pointers(line));

    const pid_t process = ::fork();
    if (process < 0) return systemError("no process for it");
    if (process == 0) become(launch);
    writeEnd.reset();
    reportWrite.reset();
    int failed = 0;
    ssize_t count = 0;
    // ends when exec has closed the other end
    while ((count = ::read(reportRead.get(), &failed, sizeof failed)) < 0 && errno == EINTR) {
    }
    if (count == sizeof failed) {
        ::waitpid(process, nullptr, 0);
        return Error{whyNot(failed, job)};
    }
    return ScriptProcess{process, std::move(readEnd)};
}

}  // namespace vigil
