#pragma once

#include <string>
#include <string_view>

#include "host_contract/QRVLog.hpp"

namespace vigil::bench {

/// A log that keeps the last line in memory, or takes none. One thread.
class MemoryLog final : public QRVLog {
  public:
    explicit MemoryLog(bool takes) : m_takes(takes) {}

    void logLevel(int, std::string_view message) override { m_last.assign(message); }
    bool takesLevel(int) const override { return m_takes; }
    const std::string& last() const { return m_last; }

  private:
    bool m_takes;
    std::string m_last;
};

}  // namespace vigil::bench
