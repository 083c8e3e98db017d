#pragma once

#include <cerrno>

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include "host/services/UniqueFd.hpp"

namespace vigil {

/// Keeps a process from being waited for, as long as this lives: one that is killed stays what the system
/// calls dead and not yet buried, as one does that waits for a disk that does not answer.
class HeldProcess {
  public:
    explicit HeldProcess(pid_t number) {
        int ends[2];
        EXPECT_EQ(::pipe(ends), 0);
        const UniqueFd read(ends[0]);
        UniqueFd write(ends[1]);
        m_tracer = ::fork();
        if (m_tracer == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            const char done = ::ptrace(PTRACE_SEIZE, number, nullptr, nullptr) == 0 ? 'y' : 'n';
            if (::write(write.get(), &done, 1) == 1)
                while (true)
                    ::pause();
            ::_exit(1);
        }
        write.reset();
        char done = 'n';
        m_holds = ::read(read.get(), &done, 1) == 1 && done == 'y';
    }
    HeldProcess(const HeldProcess&) = delete;
    HeldProcess& operator=(const HeldProcess&) = delete;
    ~HeldProcess() { release(); }

    /// False where the system does not let a test do this.
    bool holds() const { return m_holds; }

    void release() {
        if (m_tracer <= 0) return;
        ::kill(m_tracer, SIGKILL);
        while (::waitpid(m_tracer, nullptr, 0) < 0 && errno == EINTR) {
        }
        m_tracer = -1;
    }

  private:
    pid_t m_tracer = -1;
    bool m_holds = false;
};

}  // namespace vigil
