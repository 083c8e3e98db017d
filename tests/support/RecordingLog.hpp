#pragma once

#include <climits>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "host_contract/QRVLog.hpp"

namespace vigil {

/// A log that keeps what it is sent. Any thread.
class RecordingLog : public QRVLog {
  public:
    struct Line {
        int level = 0;
        std::string message;
        friend bool operator==(const Line&, const Line&) = default;
    };

    void logLevel(int level, std::string_view message) override;
    bool takesLevel(int level) const override;

    /// Levels above it are not taken; all are, unless it is set.
    void setHighestLevel(int level);

    std::vector<Line> lines() const;
    void clear();

  private:
    mutable std::mutex m_mutex;
    std::vector<Line> m_lines;
    int m_highest = INT_MAX;
};

}  // namespace vigil
