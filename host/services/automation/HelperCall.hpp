#pragma once

#include <atomic>
#include <chrono>
#include <optional>
#include <string>

#include "host/services/UniqueFd.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// Tells whoever waits for a helper that the host stops. Any thread.
class StopSignal {
  public:
    /// Throws std::runtime_error where the system has no descriptor left.
    StopSignal();
    void raise();
    bool raised() const { return m_raised; }
    int fd() const { return m_event.get(); }

  private:
    UniqueFd m_event;
    std::atomic<bool> m_raised = false;
};

/// How a call of the helper went.
struct HelperAnswer {
    std::optional<std::string> message{};  ///< its last message of the kind that was asked for
    bool stopped = false;                  ///< the host's stop came first
    std::string ending{};                  ///< without a message: "its helper was ended by signal 9"
};

/// Starts the helper with a job and waits for its message of that kind, for at most `time` plus a grace; when
/// `stop` is raised the helper is told to end and still has `kHelperGrace` to say how far it came. An error:
/// no helper was started, so nothing has happened. The calling thread waits, at
/// most two seconds longer for one that was killed and does not end.
Result<HelperAnswer> callHelper(const std::string& helper, const char* command, std::string job, char kind,
                                std::chrono::milliseconds time, const StopSignal& stop);

/// For the helper's answer behind the time of its job and after a stop, and for its end behind its answer.
inline constexpr std::chrono::milliseconds kHelperGrace{700};

}  // namespace vigil
