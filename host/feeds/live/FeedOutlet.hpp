#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "host/feeds/live/FeedCounts.hpp"
#include "host/feeds/live/FeedSink.hpp"

namespace vigil {

/// The way from what runs to one station's sink: stamps, counts, holds back repeated words, and ends when it
/// is closed. Any thread; the sink gets one call at a time.
class FeedOutlet {
  public:
    /// What was left out, as far as it is told apart for people.
    enum class LeftOut { TooLong, Unusable, Unclaimed };

    struct Options {
        std::string station;
        std::shared_ptr<FeedSink> sink;
        std::function<Date()> clock;
        std::chrono::milliseconds tellAgain;  ///< of problems of one kind one is told in so long
    };

    explicit FeedOutlet(Options options);
    FeedOutlet(const FeedOutlet&) = delete;
    FeedOutlet& operator=(const FeedOutlet&) = delete;

    const std::string& station() const { return m_options.station; }

    /// Stamps the message with the clock and brings it.
    void arrived(RawMessage message);
    /// A message of these bytes; gives whether the next one may follow now.
    bool arrivedLine(std::string_view line);
    /// Counts, and tells the sink unless one of the kind was told a short while ago.
    void leftOut(LeftOut kind, const std::string& words);
    /// The same state as before is not told again.
    void state(FeedState::Kind kind, std::string words = {});
    void restarted() { ++m_restarts; }
    bool wantsPause() const;

    Date now() const { return m_options.clock(); }
    FeedCounts counts() const;

    /// Waits for a call of the sink that is under way; the sink hears nothing more and is let go.
    void close();

  private:
    void bring(RawMessage message);
    /// Of a feed that is over: how many more there were of what was told.
    void tellRest();

    using Steady = std::chrono::steady_clock;
    struct Told {
        std::optional<Steady::time_point> at{};
        std::uint64_t since = 0;  // so many were not told
        std::string last{};       // the words that were
    };

    Options m_options;
    std::atomic<std::uint64_t> m_messages{0}, m_bytes{0}, m_leftOut{0}, m_unclaimed{0}, m_restarts{0};
    mutable std::mutex m_mutex;  // of what follows and of calls of the sink
    std::array<Told, 3> m_told{};
    std::optional<FeedState> m_last{};
};

/// "4 s", "250 ms"
std::string inWords(std::chrono::milliseconds time);

}  // namespace vigil
