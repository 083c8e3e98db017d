#include "host/helper/ScriptProcess.hpp"

#include <algorithm>
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

std::string valueOf(const Words& environment, const std::string& name, std::string otherwise) {
    for (const std::string& entry : environment)
        if (entry.starts_with(name + "=/")) otherwise = entry.substr(name.size() + 1);
    return otherwise;
}

std::string foundProgram(const std::string& name, const std::string& path) {
    if (name.find('/') != std::string::npos) return name;
    for (std::size_t begin = 0; begin <= path.size();) {
        const std::size_t end = std::min(path.find(':', begin), path.size());
        const std::string candidate = path.substr(begin, end - begin) + "/" + name;
        if (candidate[0] == '/' && candidate[1] != '/' && ::access(candidate.c_str(), X_OK) == 0)
            return candidate;
        begin = end + 1;
    }
    return name;
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

// Gives what runs, or the system's reason why nothing does. An error: it did not come so far.
Result<ScriptProcess> launched(std::vector<Words> lines, Words environment, int input, int& failed) {
    int output[2];
    int report[2];
    if (::pipe2(output, O_CLOEXEC) != 0) return systemError("no pipe for its output");
    UniqueFd readEnd(output[0]);
    UniqueFd writeEnd(output[1]);
    if (::pipe2(report, O_CLOEXEC) != 0) return systemError("no pipe for its start");
    UniqueFd reportRead(report[0]);
    UniqueFd reportWrite(report[1]);
    ::fcntl(readEnd.get(), F_SETFL, O_NONBLOCK);

    const std::string home = valueOf(environment, "HOME", "/");
    Launch launch{{}, pointers(environment), home.c_str(), input, writeEnd.get(), report[1], ::getpid()};
    for (Words& line : lines)
        launch.lines.push_back(pointers(line));

    const pid_t process = ::fork();
    if (process < 0) return systemError("no process for it");
    if (process == 0) become(launch);
    writeEnd.reset();
    reportWrite.reset();
    ssize_t count = 0;
    // ends when exec has closed the other end
    while ((count = ::read(reportRead.get(), &failed, sizeof failed)) < 0 && errno == EINTR) {
    }
    if (count == sizeof failed) {
        ::waitpid(process, nullptr, 0);
        return Error{std::strerror(failed)};
    }
    failed = 0;
    return ScriptProcess{process, std::move(readEnd)};
}

}  // namespace

Result<ScriptProcess> startScript(const ScriptJob& job, const std::string& path) {
    UniqueFd nothing(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    if (!nothing) return systemError("/dev/null cannot be read");
    int failed = 0;
    auto process = launched(commandLines(job, path), job.environment, nothing.get(), failed);
    if (!process && failed != 0) return Error{whyNot(failed, job)};
    return process;
}

Result<ScriptProcess> startProgram(const Words& words, const Words& environment, const UniqueFd& input) {
    Words line = words;
    line[0] = foundProgram(words[0], valueOf(environment, "PATH", "/usr/bin:/bin"));
    int failed = 0;
    auto process = launched({line}, environment, input.get(), failed);
    if (!process && failed == ENOENT) return Error{"there is no program " + words[0]};
    if (!process && failed != 0) return Error{words[0] + " cannot be run: " + std::strerror(failed)};
    return process;
}

}  // namespace vigil
