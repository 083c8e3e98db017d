#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "host/services/PlayEnd.hpp"
#include "host/services/PlayerWire.hpp"

namespace vigil {

inline constexpr std::size_t kPlayRequests = 256;  ///< that may be under way or wait; the newest is refused

/// How long things may take. Tests shorten them.
struct PlayerTiming {
    std::chrono::milliseconds slack{4000};   ///< a sound or speech beyond its own length, all told
    std::chrono::milliseconds answer{3000};  ///< the player to a ping; one that hangs is ended
    std::chrono::milliseconds held{2000};    ///< a held speech until it is spoken all the same
    std::chrono::milliseconds idle{30000};   ///< without a request until the process ends
};

/// Plays sounds and speaks, in a process of its own (`vigil-helper player`), which is started with the first
/// request, ended and started anew when it hangs or dies, and ended when nothing has been asked of it for a
/// while: the device is then free for others.
///
/// Sounds overlap; speeches come one after another, in the order given. Any thread may call anything; no call
/// but `stop` waits. A thread of the player's own, started with the first request, calls the callbacks.
class Player {
  public:
    using Id = std::uint64_t;
    /// Called on the player's thread. Must not throw, wait, or call `stop()`; may ask for more.
    struct Callbacks {
        /// At most once, when it begins to be heard. May be empty.
        std::function<void()> began{};
        /// Exactly once; after `stop()`, and where there are too many requests, from within the call.
        std::function<void(const PlayEnd&)> ended{};
    };
    struct Options {
        std::string helper;  ///< path of `vigil-helper`; see `helperPath`
        PlayerSetup setup{};
        PlayerTiming timing{};
    };

    explicit Player(Options options);
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;
    /// Stops.
    ~Player();

    /// Can the file be decoded? `Finished` says yes, `NotPlayable` no; after anything else it is not known.
    Id check(const std::string& path, Callbacks callbacks);
    Id play(const std::string& path, Callbacks callbacks);
    /// A held speech keeps its place and is spoken when it is released, or when it has been held for too
    /// long.
    Id speak(const std::string& text, Callbacks callbacks, bool held = false);
    void release(Id speech);
    /// Ends one; it is answered `Cut`. One that has ended already stays as it was.
    void stop(Id id);

    /// Requests without an end.
    std::size_t active() const;
    /// The process that plays; 0 when there is none. For tests.
    int process() const;

    /// Ends everything that plays and waits until every request has its answer.
    void stop();

  private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace vigil
