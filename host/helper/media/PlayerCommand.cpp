#include "host/helper/media/PlayerCommand.hpp"

#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include "host/helper/HostSocket.hpp"
#include "host/helper/media/PlayerLoop.hpp"

namespace vigil {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#elif defined(__has_feature)
constexpr bool kSanitized = __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
constexpr bool kSanitized = false;
#endif

/// Memory that the player may take; a file that decodes to more than a sound may be meets it at the latest.
constexpr rlim_t kPlayerMemory = 512 << 20;

// A sanitizer takes memory of its own and has something to say.
void boundItself() {
    if (kSanitized) return;
    rlimit memory{};
    // the lower bound alone: the program that speaks gets back what there was
    if (::getrlimit(RLIMIT_DATA, &memory) == 0 && memory.rlim_cur > kPlayerMemory) {
        memory.rlim_cur = kPlayerMemory;
        ::setrlimit(RLIMIT_DATA, &memory);
    }
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
    // The sound libraries tell there whatever they miss; what matters is in the answers.
    const int nothing = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nothing < 0) return;
    ::dup2(nothing, STDERR_FILENO);
    ::close(nothing);
}

}  // namespace

int runPlayerCommand(int socket) {
    guardProcess();
    // A library that hangs does not let the loop see that the host is gone.
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    WireBuffer buffer;
    const auto message = receiveMessage(socket, buffer);
    const auto setup = message ? decodePlayerSetup(*message) : std::nullopt;
    if (!setup) return message ? 2 : 3;
    boundItself();
    PlayerLoop loop(*setup, socket, std::move(buffer));
    loop.run();
    // Not by the usual way out: a device that hangs would keep it waiting.
    std::fflush(nullptr);
    ::_exit(0);
}

}  // namespace vigil
