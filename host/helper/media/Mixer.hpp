#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/services/PlayerWire.hpp"
#include "platform/Result.hpp"

struct Mix_Chunk;

namespace vigil {

/// The sound card, or the sound server before it: decodes sounds and lets them be heard side by side. It is
/// opened when the first sound is to be heard, and anew after it was lost. One a process. Its thread.
class Mixer {
  public:
    struct Sound {
        std::shared_ptr<Mix_Chunk> chunk;
        std::uint32_t milliseconds = 0;
        bool isSpeech = false;  ///< the sounds beside it have a bound that it does not count for
    };

    /// `device` as the system names it; empty: its choice.
    explicit Mixer(std::string device);
    Mixer(const Mixer&) = delete;
    Mixer& operator=(const Mixer&) = delete;
    ~Mixer();

    /// The whole sound, decoded; needs no device. `NotPlayable` where it cannot be decoded or is longer than
    /// a sound may be (`kSoundSeconds`), `Failed` where there is no memory now; for a speech there is no such
    /// bound.
    Result<Sound, PlayEnd> decode(const std::string& bytes);
    Result<Sound, PlayEnd> decodeSpeech(const std::string& wav);

    /// Begins to play. `id` comes back from `takeFinished`. An error where there is no device, or no place
    /// (`kSoundsAtOnce`, `kSoundSecondsAtOnce`).
    Result<Done, PlayEnd> play(std::uint64_t id, Sound sound);
    void stop(std::uint64_t id);

    /// Those that have been played to their ends.
    std::vector<std::uint64_t> takeFinished();
    /// Whether the device has gone. Then it is closed, and what played is given in `cut`.
    bool takeLost(std::vector<std::uint64_t>& cut);
    bool isPlaying() const { return !m_playing.empty(); }
    /// For poll: readable when something has been played to its end.
    int finishedEvent() const;

  private:
    enum class State { Closed, Silent, Open };

    Result<Done> openWith(const char* driver, const char* device);
    Result<Done> openDevice();
    Result<Sound, PlayEnd> decodeBytes(const std::string& bytes, bool isSpeech);
    bool hasRoomFor(const Sound& sound) const;
    void close();
    std::string devicesText() const;

    const std::string m_device;
    State m_state = State::Closed;
    std::map<int, std::pair<std::uint64_t, Sound>> m_playing;  // by channel
};

}  // namespace vigil
