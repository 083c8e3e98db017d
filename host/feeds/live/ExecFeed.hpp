#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "host/feeds/live/BackOff.hpp"
#include "host/feeds/live/ChildProcess.hpp"
#include "host/feeds/live/Feed.hpp"
#include "host/feeds/live/FeedLoop.hpp"
#include "host/feeds/live/FeedOutlet.hpp"
#include "host/feeds/live/FeedTiming.hpp"
#include "host/feeds/live/LineCutter.hpp"

namespace vigil {

/// Runs a program, brings each line of its output, and runs it again when it has ended, later each time as
/// long as it does not live. Served by a loop.
class ExecFeed final : public Feed, private FeedLoop::Member {
  public:
    ExecFeed(FeedLoop& loop, std::shared_ptr<FeedOutlet> outlet, ChildProcess::Plan plan, FeedTiming timing);
    ~ExecFeed() override;
    void askToEnd() override;

    static constexpr std::size_t kErrorBytes = 120;  ///< of the last line of standard error
    static constexpr int kChunksATurn = 16;          ///< so much is read before others have their turn

  private:
    using Time = FeedLoop::Time;

    Time serve() override;
    Time begin(Time now);
    Time goOn(Time now);
    Time end(Time now);
    bool readOutput();
    void readErrors();
    Time hasEnded(const std::string& how, Time now);
    Time tryLater(const std::string& why, Time now);
    bool keepError(std::string_view line);
    bool bring(std::string_view line);
    void tellTooLong();
    void isLive();

    FeedLoop& m_loop;
    const std::shared_ptr<FeedOutlet> m_outlet;
    const ChildProcess::Plan m_plan;
    const FeedTiming m_timing;

    std::mutex m_mutex;  // of these three
    std::condition_variable m_changed;
    bool m_asked = false, m_over = false;
    Time m_endBy{};

    // of the loop's thread
    BackOff m_backOff;
    std::optional<ChildProcess> m_child;
    LineCutter m_lines{[this](std::string_view line) { return bring(line); }, [this] { tellTooLong(); }};
    LineCutter m_errorLines{[this](std::string_view line) { return keepError(line); }, [] {}};
    std::string m_lastError;
    Time m_started{}, m_next{}, m_killAt = FeedLoop::kNever;
    bool m_startedBefore = false, m_live = false, m_paused = false, m_told = false;
};

}  // namespace vigil
