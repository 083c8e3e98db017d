#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "host/feeds/FeedUrl.hpp"
#include "host/feeds/live/FeedSink.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// The running feeds of a site. Stations whose feeds share an address (a port, a broker) share what runs.
/// One thread adds, starts and removes; sinks are called on the feeds' threads.
class Feeds {
  public:
    struct Context {
        std::function<Date()> clock;  ///< any thread
        std::string folder{};         ///< for relative paths, without a final "/"
        /// The secret of that name; nothing when there is none.
        std::function<std::optional<std::string>(const std::string& name)> secret{};
    };

    explicit Feeds(Context context);
    Feeds(const Feeds&) = delete;
    Feeds& operator=(const Feeds&) = delete;
    ~Feeds();

    /// Begins to bring the station's messages to its sink, also where what runs has to be waited for (a
    /// broker that is down): that is a state. An error where the URL asks for what cannot be.
    Result<Done> add(const std::string& station, const FeedUrl& url, std::shared_ptr<FeedSink> sink);
    /// The sink hears nothing more when this returns.
    void remove(const std::string& station);
    /// All of them.
    void stop();

  private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace vigil
