#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace vigil {

/// Where a world's speech goes: to be spoken at once, or to be written down first. Main thread.
class SpeechSink {
  public:
    using Id = std::uint64_t;
    using Ended = std::function<void(bool finished)>;

    virtual ~SpeechSink();
    /// Takes a text and returns at once. `ended` is called exactly once, on any thread, possibly from within
    /// this call; `finished` where the whole text was spoken.
    virtual Id speak(const std::optional<std::string>& text, Ended ended) = 0;
    /// Nobody waits for it any more: it ends.
    virtual void stop(Id id) = 0;
};

/// Where a world's sounds go. Main thread.
class SoundSink {
  public:
    virtual ~SoundSink();
    /// Takes a sound and returns at once. `refusal` says why the file cannot be played, where that is known.
    /// False when it will not be played.
    virtual bool play(const std::string& path, const std::optional<std::string>& refusal) = 0;
};

}  // namespace vigil
