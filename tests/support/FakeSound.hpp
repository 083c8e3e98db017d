#pragma once

#include <set>
#include <string>

#include "platform/Sound.hpp"
#include "tests/support/EffectJournal.hpp"

namespace vigil {

/// Sound that is written down. Journal: "player PATH", "stop PATH", "play PATH". Main thread.
class FakeSound : public SoundOutput {
  public:
    explicit FakeSound(EffectJournal& journal) : m_journal(journal) {}

    /// The files that cannot be read or decoded.
    std::set<std::string> unplayable;

    std::shared_ptr<AudioPlayer> makePlayer(const std::string& path) override;
    bool play(const std::string& path) override;

  private:
    class Player;
    EffectJournal& m_journal;
};

}  // namespace vigil
