#pragma once

#include <functional>
#include <string>

#include "host/services/PlaySinks.hpp"
#include "host/services/Player.hpp"

// Sinks that play at once and tell of what went wrong, for a world that writes nothing down. Main thread; the
// player is the caller's and outlives them, `tell` may be called on any thread.

namespace vigil {

/// Hears a sentence about what was not spoken or played.
using TellOfSound = std::function<void(const std::string& sentence)>;

class ToldSpeech : public SpeechSink {
  public:
    ToldSpeech(Player& player, TellOfSound tell) : m_player(player), m_tell(std::move(tell)) {}
    Id speak(const std::optional<std::string>& text, Ended ended) override;
    void stop(Id id) override { m_player.stop(id); }

  private:
    Player& m_player;
    const TellOfSound m_tell;
};

class ToldSound : public SoundSink {
  public:
    ToldSound(Player& player, TellOfSound tell) : m_player(player), m_tell(std::move(tell)) {}
    bool play(const std::string& path, const std::optional<std::string>& refusal) override;

  private:
    Player& m_player;
    const TellOfSound m_tell;
};

/// "only the first 1000 characters were spoken", or nothing.
std::string leftOutText(std::size_t leftOut);

}  // namespace vigil
