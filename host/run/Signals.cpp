#include "host/run/Signals.hpp"

#include <utility>

#include <pthread.h>
#include <signal.h>

namespace vigil {
namespace {

sigset_t theSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&set, signal);
    return set;
}

/// Ends the thread; nothing else in the program uses it.
constexpr int kEnd = SIGUSR2;

}  // namespace

void blockSignals() {
    sigset_t set = theSignals();
    sigaddset(&set, kEnd);
    ::pthread_sigmask(SIG_BLOCK, &set, nullptr);
    // A pipe that nobody reads any more is an error where it is written, not the end of the service.
    ::signal(SIGPIPE, SIG_IGN);
}

Signals::Signals(Came came) {
    m_thread = std::thread([came = std::move(came)] {
        ::pthread_setname_np(::pthread_self(), "vigil-signals");
        sigset_t set = theSignals();
        sigaddset(&set, kEnd);
        while (true) {
            int signal = 0;
            if (::sigwait(&set, &signal) != 0) continue;
            if (signal == kEnd) return;
            came(signal);
        }
    });
}

Signals::~Signals() {
    ::pthread_kill(m_thread.native_handle(), kEnd);
    m_thread.join();
}

}  // namespace vigil
