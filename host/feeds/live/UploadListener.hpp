#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "host/feeds/live/FeedLoop.hpp"
#include "host/feeds/live/FeedTiming.hpp"
#include "host/feeds/live/UploadStations.hpp"
#include "platform/Result.hpp"

namespace vigil {

inline constexpr unsigned kMostUploaders = 200;          ///< connections; further ones wait their turn
inline constexpr unsigned kMostUploadersOfAddress = 16;  ///< so one machine cannot take all places
/// Of a connection; the first line and the headers have to fit. Stops headers without an end.
inline constexpr std::size_t kUploaderMemory = std::size_t{1} << 14;

/// Takes uploads at a port, by GET and POST, under whatever path, and brings them to their stations. A port
/// that is taken or forbidden is tried again until it is free. It has a thread of the HTTP library once it
/// listens; until then, and for connections that take too long, a loop serves it.
class UploadListener final : private FeedLoop::Member {
  public:
    /// `host`: an address of this machine, 0.0.0.0 or :: for all of them, or "localhost". An error for
    /// anything else: names are not looked up.
    static Result<std::shared_ptr<UploadListener>> start(FeedLoop& loop, const std::string& host,
                                                         std::uint16_t port, FeedTiming timing);
    UploadListener(const UploadListener&) = delete;
    UploadListener& operator=(const UploadListener&) = delete;
    /// No connection is left, and no thread.
    ~UploadListener();

    /// The thread that adds feeds.
    Result<Done> add(std::shared_ptr<FeedOutlet> outlet, std::optional<std::string> identity);
    void remove(const FeedOutlet& outlet);

  private:
    struct State;
    explicit UploadListener(std::unique_ptr<State> state);
    FeedLoop::Time serve() override;

    std::unique_ptr<State> m_state;
};

}  // namespace vigil
