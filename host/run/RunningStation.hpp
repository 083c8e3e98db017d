#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "host/feeds/live/FeedSink.hpp"
#include "host/kit/Station.hpp"
#include "host/readings/StationReadings.hpp"
#include "host/run/FireDesk.hpp"
#include "host/run/Histogram.hpp"
#include "host/run/StrandPool.hpp"
#include "host/site/HistoryWriter.hpp"

namespace vigil {

/// Messages of a station that may wait for their turn; behind them the oldest goes, since the newest says how
/// things are.
inline constexpr std::size_t kMessagesOfStation = 1024;
/// And so many bytes of them.
inline constexpr std::size_t kBytesOfStation = std::size_t{8} << 20;

/// A station at work: takes what its feed brings, reads it, makes readings of it and announces them, one
/// notification at a time, on the threads of a pool. After a notification in which a plug-in fired it goes on
/// only when what the fire changed stands in the site file; it holds no thread meanwhile.
class RunningStation : public Strand, public FeedSink {
  public:
    /// What happens around a station. All calls come on its strand.
    struct Surroundings {
        StrandPool& pool;
        HostWorld& world;
        HistoryWriter* history = nullptr;  ///< absent: none is written
        Histogram& notificationTimes;
        /// Deals with what an announcement threw before it returns.
        std::function<void(std::vector<DeliveryFailure>)> settle;
        /// Takes the fires of an announcement and calls `durable` once, on any thread.
        std::function<void(std::vector<Fire>, std::function<void()> durable)> complete;
    };

    RunningStation(Surroundings around, StationRecord record, std::shared_ptr<Station> station,
                   std::unique_ptr<Decoder> decoder, StationReadingsSettings settings);

    const StationRecord& record() const { return m_record; }
    const std::shared_ptr<Station>& station() const { return m_station; }

    void arrived(RawMessage message) override;
    void problem(const std::string& words) override;
    void state(FeedState state) override;
    bool wantsPause() const override;

    /// Lets ages grow while nothing comes. Now and then, any thread.
    void remind();

    /// Takes nothing more: what waits is dropped.
    void close();
    /// Whether nothing is under way and nothing waits. Any thread.
    bool isAtRest() const;

    /// Any thread.
    struct Counts {
        FeedState feed;
        std::optional<Date> lastData{};     ///< when something last came that was news
        std::optional<Date> lastMessage{};  ///< when anything came
        std::uint64_t messages = 0;
        std::uint64_t notifications = 0;
        std::map<std::string, std::uint64_t> drops{};  ///< by why
        std::size_t queued = 0;
        std::string lastProblem{};
    };
    Counts counts() const;

  protected:
    Step step() override;

  private:
    std::optional<RawMessage> takeMessage();
    Step age();
    void decode(const RawMessage& message);
    void noteDrops();
    // False when the strand has to wait.
    bool take(const Packet& packet);
    bool announce(const std::shared_ptr<const Readings>& batch, Date now);
    void tell(const std::string& words);

    Surroundings m_around;
    const StationRecord m_record;
    const std::shared_ptr<Station> m_station;

    // The strand's own.
    const std::unique_ptr<Decoder> m_decoder;
    StationReadings m_readings;
    std::deque<Packet> m_packets;
    std::vector<Packet> m_decoded;

    mutable std::mutex m_mutex;
    std::deque<RawMessage> m_messages;
    Counts m_counts;
    std::size_t m_bytes = 0;  // of the messages
    std::optional<std::chrono::steady_clock::time_point> m_toldProblem;
    std::uint64_t m_untold = 0;  // problems since then
    bool m_closed = false;
    bool m_busy = false;
    bool m_reminded = false;
};

}  // namespace vigil
