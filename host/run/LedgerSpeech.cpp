#include "host/run/LedgerSpeech.hpp"

#include <utility>

#include "host/run/PlayEffects.hpp"
#include "host/services/SpokenText.hpp"
#include "host/services/ToldSinks.hpp"
#include "platform/CallNote.hpp"

namespace vigil {
namespace {

const char* const kStopped = "the host stopped";

}  // namespace

SpeechSink::Id LedgerSpeech::speak(const std::optional<std::string>& text, Ended ended) {
    const Id id = ++m_lastId;
    SpokenText spoken = spokenText(text);
    auto speech = std::make_shared<Speech>(
        Speech{.record = m_ledger.make(EffectRecord::Speech, spoken.text, CallNote::current()),
               .ended = std::move(ended),
               .leftOut = spoken.leftOut});
    if (spoken.text.empty()) {
        end(*speech, {PlayOutcome::NothingToSay, "there is nothing to say"});
    } else if (m_ledger.isStopping() || !keep(id, speech)) {
        end(*speech, {PlayOutcome::Cut, kStopped});
    } else {
        hand(id, speech, spoken.text);
    }
    return id;
}

/// False once nobody may speak any more.
bool LedgerSpeech::keep(Id id, const std::shared_ptr<Speech>& speech) {
    m_ledger.queued(speech->record, [this, speech] { release(speech); });
    const std::lock_guard lock(m_mutex);
    if (!m_stopped) m_speeches[id] = speech;
    return !m_stopped;
}

// It takes its place among the speeches now, and is spoken when its record stands.
void LedgerSpeech::hand(Id id, const std::shared_ptr<Speech>& speech, const std::string& text) {
    const Player::Id given = m_player.speak(text,
                                            {.began = [this, id] { began(id); },
                                             .ended =
                                                 [this, id](const PlayEnd& how) {
                                                     if (const auto over = take(id)) end(*over, how);
                                                 }},
                                            /*held=*/true);
    bool released = false;
    bool wanted = false;
    {
        const std::lock_guard lock(m_mutex);
        speech->player = given;
        released = speech->released;
        wanted = m_speeches.contains(id);
    }
    if (!wanted)
        m_player.stop(given);  // it was ended before the player had it
    else if (released)
        m_player.release(given);
}

// On the writer's thread, or within `queued`.
void LedgerSpeech::release(const std::shared_ptr<Speech>& speech) {
    Player::Id given = 0;
    {
        const std::lock_guard lock(m_mutex);
        speech->released = true;
        given = speech->player;
    }
    if (given != 0) m_player.release(given);
}

void LedgerSpeech::began(Id id) {
    const std::lock_guard lock(m_mutex);
    const auto found = m_speeches.find(id);
    if (found != m_speeches.end()) m_ledger.started(found->second->record, m_ledger.now());
}

/// Whoever takes it ends it, and nobody else does.
std::shared_ptr<LedgerSpeech::Speech> LedgerSpeech::take(Id id) {
    const std::lock_guard lock(m_mutex);
    auto node = m_speeches.extract(id);
    return node ? node.mapped() : nullptr;
}

void LedgerSpeech::end(Speech& speech, PlayEnd how) {
    if (how.outcome == PlayOutcome::Finished && speech.leftOut != 0)
        how = {PlayOutcome::Shortened, leftOutText(speech.leftOut)};
    PlayEffect effect = playEffect(how);
    m_ledger.ended(speech.record, m_ledger.now(), std::move(effect.result), std::move(effect.detail),
                   effect.failed);
    speech.ended(how.outcome == PlayOutcome::Finished);
}

void LedgerSpeech::stop(Id id) {
    const auto speech = take(id);
    if (!speech) return;
    if (speech->player != 0) m_player.stop(speech->player);
    end(*speech, {PlayOutcome::Cut, "nobody waited for it any more"});
}

void LedgerSpeech::stopSpeaking() {
    Speeches all;
    {
        const std::lock_guard lock(m_mutex);
        m_stopped = true;
        all.swap(m_speeches);
        // Youngest first: the end of one that speaks would let the next one begin.
        for (auto speech = all.rbegin(); speech != all.rend(); ++speech)
            if (speech->second->player != 0) m_player.stop(speech->second->player);
    }
    for (const auto& [id, speech] : all)
        end(*speech, {PlayOutcome::Cut, kStopped});
}

}  // namespace vigil
