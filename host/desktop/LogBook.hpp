#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

#include "host_contract/QRVLog.hpp"
#include "platform/Date.hpp"

namespace vigil {

/// Lines that are kept for people; older ones are forgotten.
inline constexpr std::size_t kLogBookLines = 5000;

/// The log of a window: its last lines, and behind it another log that gets all of them. Any thread.
class LogBook : public QRVLog {
  public:
    struct Line {
        std::uint64_t number = 0;  ///< counted from 1
        Date when{};
        int level = 0;
        std::string message{};
    };

    /// `next` is the caller's and outlives this.
    explicit LogBook(QRVLog& next) : m_next(next) {}

    void logLevel(int level, std::string_view message) override;
    bool takesLevel(int level) const override { return level <= m_highest; }
    void setHighestLevel(int level) { m_highest = level; }
    int highestLevel() const { return m_highest; }

    /// Those with a higher number, oldest first.
    std::vector<Line> since(std::uint64_t number) const;

  private:
    QRVLog& m_next;
    std::atomic<int> m_highest{2};
    mutable std::mutex m_mutex;
    std::deque<Line> m_lines;
    std::uint64_t m_count = 0;
};

}  // namespace vigil
