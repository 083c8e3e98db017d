#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "host/feeds/OpenRecorded.hpp"
#include "host/feeds/live/BackOff.hpp"
#include "host/feeds/live/Feed.hpp"
#include "host/feeds/live/FeedLoop.hpp"
#include "host/feeds/live/FeedOutlet.hpp"
#include "host/feeds/live/FeedTiming.hpp"

namespace vigil {

/// Brings the notifications of a recording at the pace at which they were recorded, or faster: a file or a
/// simulation. Served by a loop.
class RecordedFeed final : public Feed, private FeedLoop::Member {
  public:
    struct Options {
        std::function<Opened(ProblemTeller)> open;  ///< on the loop's thread
        double speed = 1;                           ///< so many times as fast; 0: as fast as they are taken
        bool shifts = true;                         ///< times as if it were recorded now
    };

    RecordedFeed(FeedLoop& loop, std::shared_ptr<FeedOutlet> outlet, Options options, FeedTiming timing);
    ~RecordedFeed() override;
    void askToEnd() override {}

    static constexpr int kNotificationsATurn = 64;  ///< before others have their turn

  private:
    using Time = FeedLoop::Time;

    Time serve() override;
    /// Gives when to try again, or nothing once it is open.
    std::optional<Time> open(Time now);
    /// Gives whether there is one.
    bool takeNext();
    Time dueTime() const;
    void bring();

    FeedLoop& m_loop;
    const std::shared_ptr<FeedOutlet> m_outlet;
    const Options m_options;
    const FeedTiming m_timing;

    // of the loop's thread
    BackOff m_backOff;
    std::unique_ptr<RecordedSource> m_source;
    std::optional<RecordedNotification> m_next;
    std::optional<Date> m_firstTime;
    Time m_began{};
    std::uint64_t m_brought = 0;
    bool m_over = false;
};

}  // namespace vigil
