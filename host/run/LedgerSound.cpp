#include "host/run/LedgerSound.hpp"

#include <utility>

#include "host/run/PlayEffects.hpp"
#include "platform/CallNote.hpp"

namespace vigil {
namespace {

std::string fileName(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

}  // namespace

void LedgerSound::end(const EffectRecord& record, const PlayEnd& end) {
    PlayEffect effect = playEffect(end);
    m_ledger.ended(record, m_ledger.now(), std::move(effect.result), std::move(effect.detail), effect.failed);
}

bool LedgerSound::play(const std::string& path, const std::optional<std::string>& refusal) {
    auto record = std::make_shared<EffectRecord>(
        m_ledger.make(EffectRecord::Sound, fileName(path), CallNote::current()));
    if (refusal) {
        end(*record, {PlayOutcome::NotPlayable, *refusal});
        return false;
    }
    m_ledger.queued(*record, [this, path, record] { begin(path, record); });
    return true;
}

// On the writer's thread. What follows is called on the player's, one after the other.
void LedgerSound::begin(const std::string& path, const std::shared_ptr<EffectRecord>& record) {
    if (m_ledger.isStopping())
        return end(*record, {PlayOutcome::Cut, "the host stopped before its turn came"});
    m_player.play(path, {.began = [this, record] { m_ledger.started(*record, m_ledger.now()); },
                         .ended = [this, record](const PlayEnd& how) { end(*record, how); }});
}

}  // namespace vigil
