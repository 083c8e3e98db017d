#include "host/helper/Children.hpp"

#include <cctype>
#include <filesystem>
#include <fstream>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

namespace vigil {
namespace {

namespace fs = std::filesystem;

// The fourth field of a process's stat line; the second is its name in brackets, which may hold anything.
pid_t parentOf(const fs::path& folder) {
    std::ifstream file(folder / "stat");
    std::string line;
    std::getline(file, line);
    const std::size_t end = line.rfind(") ");
    if (end == std::string::npos || line.size() < end + 5) return -1;
    return static_cast<pid_t>(std::strtol(line.c_str() + end + 4, nullptr, 10));
}

}  // namespace

std::vector<pid_t> childProcessesByWalk() {
    std::vector<pid_t> list;
    std::error_code failed;
    for (fs::directory_iterator it("/proc", failed), end; !failed && it != end; it.increment(failed)) {
        const std::string name = it->path().filename();
        if (!std::isdigit(static_cast<unsigned char>(name[0])) || parentOf(it->path()) != ::getpid())
            continue;
        list.push_back(static_cast<pid_t>(std::strtol(name.c_str(), nullptr, 10)));
    }
    return list;
}

std::vector<pid_t> childProcesses() {
    std::vector<pid_t> list;
    std::error_code failed;
    // orphans may come to any thread of the process
    for (fs::directory_iterator it("/proc/self/task", failed), end; !failed && it != end;
         it.increment(failed)) {
        std::ifstream file(it->path() / "children");
        if (!file) return childProcessesByWalk();
        for (pid_t process = 0; file >> process;)
            list.push_back(process);
    }
    return failed ? childProcessesByWalk() : list;
}

std::vector<pid_t> reapOthers(pid_t but) {
    while (true) {
        std::vector<pid_t> left;
        bool hasTaken = false;
        for (const pid_t process : childProcesses()) {
            if (process == but) continue;
            const pid_t taken = ::waitpid(process, nullptr, WNOHANG);
            if (taken == 0) left.push_back(process);
            hasTaken = hasTaken || taken == process;
        }
        // The children of one that ended behind the listing have come to us since.
        if (!hasTaken) return left;
    }
}

}  // namespace vigil
