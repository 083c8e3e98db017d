#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/feeds/FeedUrl.hpp"
#include "host/feeds/live/FeedCounts.hpp"
#include "host/feeds/live/FeedSink.hpp"
#include "host/feeds/live/FeedTiming.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// The running feeds of a site. Stations whose feeds share an address (a port, a broker) share what runs.
/// One thread adds, starts and removes; sinks are called on the feeds' threads.
///
/// What of a URL is of interest here, apart from the address (docs/feeds.md has all of it):
///
///     upload:     id=ID             takes uploads of this identity alone, in any case of letters
///     mqtt:       secret=NAME ca=FILE client=ID qos=0|1|2, and the user in front of the host
///     lines:      from=start|end    where a file that is there is begun; "end" unless said
///     csv:        speed=N           N times as fast as recorded, 0 as fast as it is taken; 60 unless said
///                 shift=now|keep    times as if it were recorded now, or as they stand; "now" unless said
///                 time-column=NAME station-column=NAME station=NAME separator=C units=metric|us
///     simulated:  seed=N step=S     S seconds of weather from one notification to the next, 300 unless said
///                 speed=N           N times as fast as real weather, `step` unless said: one a second
class Feeds {
  public:
    struct Context {
        std::function<Date()> clock;  ///< any thread
        std::string folder{};         ///< for relative paths, without a final "/"; programs run in it
        /// The secret of that name; nothing when there is none. Any thread.
        std::function<std::optional<std::string>(const std::string& name)> secret{};
        FeedTiming timing{};
    };

    explicit Feeds(Context context);
    Feeds(const Feeds&) = delete;
    Feeds& operator=(const Feeds&) = delete;
    /// Stops.
    ~Feeds();

    /// Begins to bring the station's messages to its sink, also where what runs has to be waited for (a
    /// broker that is down): that is a state. An error where the URL asks for what cannot be, and for a
    /// station that has a feed.
    Result<Done> add(const std::string& station, const FeedUrl& url, std::shared_ptr<FeedSink> sink);
    /// Their sinks hear nothing more when this returns, within a second for all of them together. One without
    /// a feed is passed over.
    void remove(const std::vector<std::string>& stations);
    void remove(const std::string& station) { remove(std::vector{station}); }
    /// All of them, within a second together.
    void stop();

    /// Nothing for a station without a feed. Any thread.
    std::optional<FeedCounts> counts(const std::string& station) const;

  private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace vigil
