#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <sys/types.h>

#include "host/services/UniqueFd.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// A running program in a session and process group of its own, with nothing to read, whose output and errors
/// are pipes that do not block. It is asked to end (TERM) when the thread that started it ends, also when the
/// process is killed, so that it does not hold on to its device. One thread at a time.
class ChildProcess {
  public:
    struct Plan {
        std::vector<std::string> words;  ///< program, looked up in PATH where it has no "/", and arguments
        std::string folder;              ///< it runs there; empty: where this process does
        std::vector<std::pair<std::string, std::string>> environment;
    };

    /// An error in words where the program is not there or may not be run.
    static Result<ChildProcess> start(const Plan& plan);
    ChildProcess(ChildProcess&&) noexcept;
    ChildProcess& operator=(ChildProcess&&) = delete;
    /// Kills what is left of its group and waits for it, at most `kLongestReap`.
    ~ChildProcess();

    int output() const { return m_output.get(); }
    int errors() const { return m_errors.get(); }
    /// For poll: readable once the program has ended.
    int process() const { return m_process.get(); }

    /// To the whole group.
    void signal(int number);
    /// Once the program has ended: how, in words ("ended with exit status 2"). It stays a zombie, whose
    /// number nobody else can have, until this object ends.
    std::optional<std::string> ending();

    static constexpr std::chrono::milliseconds kLongestReap{200};

  private:
    ChildProcess(pid_t number, UniqueFd process, UniqueFd output, UniqueFd errors);

    pid_t m_number;
    UniqueFd m_process, m_output, m_errors;
};

}  // namespace vigil
