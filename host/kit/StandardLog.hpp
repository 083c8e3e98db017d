#pragma once

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <mutex>
#include <string>

#include "host_contract/QRVLog.hpp"
#include "platform/Date.hpp"

namespace vigil {

// The levels of the log; plug-ins use the last.
inline constexpr int kLogProblem = 1;  ///< something failed, and what was done about it
inline constexpr int kLogNotice = 2;   ///< what a user may want to know of a normal run
inline constexpr int kLogDetail = 3;   ///< every judgement

/// How the lines of a log look.
enum class LogForm {
    Text,     ///< 2026-11-21T10:34:18.123Z 3 Vigil evaluation dictionary: {windSpeed = 4 m/s} #QRVVigilPlugIn
    Journal,  ///< <7>Vigil evaluation dictionary: … : the priority as the journal reads it, which has a clock
    Json      ///< {"time":"2026-11-21T10:34:18.123Z","level":3,"message":"Vigil evaluation dictionary: …"}
};

/// Whether what is written there goes to the journal of the service manager.
bool isJournal(int descriptor);

/// Writes each message as one line to a stream that the caller keeps open.
///
/// Line ends and other control characters inside a message are written as "\n" or "\x1b", so that a reading's
/// text can neither feign a line nor steer a terminal. Any thread; lines of several threads never mix.
class StandardLog : public QRVLog {
  public:
    using Clock = std::function<Date()>;

    StandardLog(std::FILE* stream, int highestLevel, Clock clock, LogForm form = LogForm::Text);

    void logLevel(int level, std::string_view message) override;
    bool takesLevel(int level) const override;
    void setHighestLevel(int level);

    /// Lines that could not be written (a full disk, a closed pipe).
    std::uint64_t lostLines() const;

  private:
    std::string lineOf(int level, std::string_view message) const;

    std::FILE* const m_stream;
    std::atomic<int> m_highest;
    const Clock m_clock;
    const LogForm m_form;
    std::mutex m_mutex;
    std::atomic<std::uint64_t> m_lost{0};
};

}  // namespace vigil
