#pragma once

#include <string_view>

#include "host/command/Output.hpp"
#include "host_contract/QRVLog.hpp"
#include "platform/Date.hpp"

namespace vigil {

/// Writes a replayed monitor's log to the error stream, with the time of the records.
class ReplayLog final : public QRVLog {
  public:
    /// `now` is the caller's, who turns it on, and outlives the log.
    ReplayLog(Output& output, int highestLevel, const Date& now)
        : m_output(output), m_highest(highestLevel), m_now(now) {}

    bool takesLevel(int level) const override { return level <= m_highest; }
    void logLevel(int level, std::string_view message) override;

  private:
    Output& m_output;
    const int m_highest;
    const Date& m_now;
};

}  // namespace vigil
