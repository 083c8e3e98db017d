#pragma once

#include <memory>
#include <optional>
#include <string>

#include "host/run/EffectLedger.hpp"
#include "host/services/PlaySinks.hpp"
#include "host/services/Player.hpp"

namespace vigil {

/// Plays a site's sounds, each as soon as its record stands in the site file. Main thread; player and ledger
/// are the caller's and outlive this.
class LedgerSound : public SoundSink {
  public:
    LedgerSound(Player& player, EffectLedger& ledger) : m_player(player), m_ledger(ledger) {}
    bool play(const std::string& path, const std::optional<std::string>& refusal) override;

  private:
    void end(const EffectRecord& record, const PlayEnd& end);
    void begin(const std::string& path, const std::shared_ptr<EffectRecord>& record);

    Player& m_player;
    EffectLedger& m_ledger;
};

}  // namespace vigil
