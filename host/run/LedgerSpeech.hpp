#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "host/run/EffectLedger.hpp"
#include "host/services/PlaySinks.hpp"
#include "host/services/Player.hpp"

namespace vigil {

/// Speaks for a site, each text as soon as its record stands in the site file and those before it have ended.
/// Main thread; player and ledger are the caller's and outlive this.
class LedgerSpeech : public SpeechSink {
  public:
    LedgerSpeech(Player& player, EffectLedger& ledger) : m_player(player), m_ledger(ledger) {}
    Id speak(const std::optional<std::string>& text, Ended ended) override;
    void stop(Id id) override;

    /// Ends every speech, and from now on each one that is asked for at once. Any thread.
    void stopSpeaking();

  private:
    struct Speech {
        EffectRecord record;
        Ended ended;
        std::size_t leftOut = 0;
        Player::Id player = 0;  // 0: not with the player yet
        bool released = false;
    };
    using Speeches = std::map<Id, std::shared_ptr<Speech>>;

    bool keep(Id id, const std::shared_ptr<Speech>& speech);
    void hand(Id id, const std::shared_ptr<Speech>& speech, const std::string& text);
    void release(const std::shared_ptr<Speech>& speech);
    void began(Id id);
    std::shared_ptr<Speech> take(Id id);
    void end(Speech& speech, PlayEnd how);

    Player& m_player;
    EffectLedger& m_ledger;
    std::mutex m_mutex;
    Speeches m_speeches;  // without an end yet
    Id m_lastId = 0;      // main thread
    bool m_stopped = false;
};

}  // namespace vigil
