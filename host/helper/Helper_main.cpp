#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <system_error>

#include <unistd.h>

#include "host/helper/ProgramCommand.hpp"
#include "host/helper/ScriptCommand.hpp"

namespace {

constexpr int kCannot = 2;

/// Libraries that take longer to load than a script to run stand in a program of their own beside this one.
int becomeMedia(char** words) {
    std::error_code unknown;
    const auto media =
        std::filesystem::read_symlink("/proc/self/exe", unknown).parent_path() / "vigil-helper-media";
    ::execv(media.c_str(), words);
    std::fprintf(stderr, "vigil-helper: %s: %s\n", media.c_str(), std::strerror(errno));
    return kCannot;
}

}  // namespace

int main(int count, char** words) {
    const std::string_view command = count == 2 ? words[1] : "";
    if (command == "script") return vigil::runScriptCommand(0);
    if (command == "program") return vigil::runProgramCommand(0);
    if (command == "mail" || command == "player") return becomeMedia(words);
    std::fputs("vigil-helper is started by vigil itself: vigil-helper script|program|player|mail\n", stderr);
    return kCannot;
}
