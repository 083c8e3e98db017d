#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include <sys/types.h>

#include "host/services/HelperWire.hpp"
#include "host/services/UniqueFd.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// A running `vigil-helper`: its process and the socket to it. Nothing here waits but the end of one that
/// still runs. For one thread at a time.
class HelperProcess {
  public:
    /// Starts `path` with the sub-command and queues its first message, which is sent as the helper takes it.
    /// Fails with words.
    static Result<HelperProcess> start(const std::string& path, const char* command, std::string message);

    HelperProcess(HelperProcess&&) noexcept = default;
    HelperProcess& operator=(HelperProcess&&) noexcept = default;
    /// A helper that still runs is killed and waited for, for at most `kDyingTime`. One that does not even
    /// end then (it waits for a disk that does not answer) is taken away by a later `reap`.
    ~HelperProcess();

    /// For poll: -1 once there is nothing more to expect of it.
    int socket() const { return m_socket.get(); }
    short socketEvents() const;
    /// For poll: readable once the helper has ended.
    int process() const { return m_process.get(); }
    pid_t number() const { return m_number; }

    /// Queues a further message.
    void send(std::string_view message) { m_out += message; }
    /// Sends what is queued and takes what has come, as far as that goes without waiting.
    void exchange();
    /// The next whole message of the helper, without its length.
    std::optional<std::string> next() { return m_in.next(); }
    /// What the helper sent is no message.
    bool broken() const { return m_in.broken(); }

    /// Tells the helper to end what it runs, and itself. Its answer still comes.
    void closeInput();
    void kill();

    /// Once the helper has ended: how, in words ("was ended by signal 9", "ended with exit status 3").
    /// Nothing as long as it runs.
    std::optional<std::string> ending();
    /// The signal that ended it; 0 as long as it runs and where none did.
    int signal() const { return m_signal; }

    /// Takes away those that have ended at last. Every start does so as well. Any thread.
    static void reap();

  private:
    HelperProcess(pid_t number, UniqueFd process, UniqueFd socket, std::string message);

    pid_t m_number;
    UniqueFd m_process;
    UniqueFd m_socket;
    std::string m_out;
    std::size_t m_sent = 0;
    WireBuffer m_in;
    std::optional<std::string> m_ending;
    int m_signal = 0;
};

/// How long one that was killed is waited for.
inline constexpr std::chrono::milliseconds kDyingTime{1000};

}  // namespace vigil
