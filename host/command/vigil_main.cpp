#include <cstdio>
#include <string>
#include <vector>

#include <unistd.h>

#include "host/command/CommandLine.hpp"

namespace {

/// The folder of this program, or nothing where the system does not tell.
std::string programFolder() {
    std::string path(4096, '\0');
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    if (length <= 0 || static_cast<std::size_t>(length) == path.size()) return {};
    path.resize(static_cast<std::size_t>(length));
    return path.substr(0, path.rfind('/'));
}

}  // namespace

int main(int count, char** words) {
    static char buffer[1 << 16];
    if (isatty(STDOUT_FILENO) == 0) std::setvbuf(stdout, buffer, _IOFBF, sizeof buffer);
    vigil::Output output(stdout, stderr);
    const std::vector<std::string> arguments(words + (count > 0 ? 1 : 0), words + count);
    return static_cast<int>(vigil::runCommandLine(arguments, vigil::allCommands(), output, programFolder()));
}
