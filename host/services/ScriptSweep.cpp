#include "host/services/ScriptSweep.hpp"

#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <vector>

#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "host/services/ScriptWire.hpp"
#include "host/services/UniqueFd.hpp"

namespace vigil {
namespace {

namespace fs = std::filesystem;

constexpr int kPasses = 5;              // a process may start another while the list is read
constexpr int kGoneWithin = 100;        // milliseconds, of a process that has been killed
constexpr std::size_t kRead = 1 << 20;  // bytes of an environment; ours is far smaller

bool bearsMark(const fs::path& folder, const std::string& entry, std::string& buffer) {
    std::ifstream file(folder / "environ", std::ios::binary);
    file.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
    const std::string_view all(buffer.data(), static_cast<std::size_t>(file.gcount()));
    // each entry ends with a NUL
    return all.starts_with(entry) || all.find('\0' + entry) != std::string::npos;
}

// The marked processes, each held by a descriptor before it is looked at, so that its number cannot come to
// mean another.
std::vector<UniqueFd> marked(const std::string& entry) {
    std::vector<UniqueFd> list;
    std::string buffer(kRead, '\0');
    std::error_code failed;
    for (fs::directory_iterator it("/proc", failed), end; !failed && it != end; it.increment(failed)) {
        const std::string name = it->path().filename();
        if (!std::isdigit(static_cast<unsigned char>(name[0]))) continue;
        UniqueFd process(static_cast<int>(::syscall(SYS_pidfd_open, std::atoi(name.c_str()), 0)));
        if (process && bearsMark(it->path(), entry, buffer)) list.push_back(std::move(process));
    }
    return list;
}

}  // namespace

void sweepScript(const std::string& mark) {
    const std::string entry = std::string(kRunMark) + "=" + mark + '\0';
    for (int pass = 0; pass < kPasses; ++pass) {
        const std::vector<UniqueFd> found = marked(entry);
        if (found.empty()) break;
        for (const UniqueFd& process : found)
            ::syscall(SYS_pidfd_send_signal, process.get(), SIGKILL, nullptr, 0);
        for (const UniqueFd& process : found) {
            pollfd over{process.get(), POLLIN, 0};
            ::poll(&over, 1, kGoneWithin);
        }
    }
    std::error_code gone;  // most of these never were
    for (const std::string& folder : scriptFolders(mark))
        fs::remove_all(folder, gone);
}

}  // namespace vigil
