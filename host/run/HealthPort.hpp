#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "host/run/SiteStatus.hpp"
#include "platform/Result.hpp"

struct MHD_Daemon;

namespace vigil {

/// Answers on a port of the loopback address: "/metrics" (Prometheus text form), "/health" (200 while all is
/// well, else 503 with what is wrong, one a line) and "/status" (JSON). It reads and never changes anything.
class HealthPort {
  public:
    /// Gives the status, or an error where the main thread does not answer in time; called on the port's
    /// thread.
    using Status = std::function<Result<SiteStatus>()>;

    /// Port 0 takes a free one. An error where the port cannot be had.
    static Result<std::unique_ptr<HealthPort>> open(std::uint16_t port, Status status);
    HealthPort(const HealthPort&) = delete;
    HealthPort& operator=(const HealthPort&) = delete;
    ~HealthPort();

    std::uint16_t port() const { return m_port; }

  private:
    explicit HealthPort(Status status) : m_status(std::move(status)) {}
    struct Page {
        unsigned code;
        const char* type;
        std::string text;
    };
    Page page(const std::string& path) const;
    friend struct HealthPortCalls;

    const Status m_status;
    MHD_Daemon* m_daemon = nullptr;
    std::uint16_t m_port = 0;
};

}  // namespace vigil
