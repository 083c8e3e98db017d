#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace vigil {

/// What a service manager that started this process wants to hear, by the datagrams of sd_notify(3):
/// readiness, a sign of life, the end. Silent where none started it. Main thread.
class ServiceManager {
  public:
    /// Reads NOTIFY_SOCKET and WATCHDOG_USEC, and takes them out of the environment, so that no child answers
    /// in this process's place.
    ServiceManager();

    void ready(const std::string& words);
    void reloading();
    void stopping();
    void alive();
    /// How often a sign of life is wanted: half of the watchdog's time; nothing where there is none.
    std::optional<std::chrono::milliseconds> aliveEvery() const { return m_aliveEvery; }

  private:
    void send(const std::string& text);

    std::string m_socket;
    std::optional<std::chrono::milliseconds> m_aliveEvery;
};

}  // namespace vigil
