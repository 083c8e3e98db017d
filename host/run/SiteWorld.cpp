#include "host/run/SiteWorld.hpp"

#include <utility>

#include "platform/CallNote.hpp"

namespace vigil {
namespace {

AutomationOptions withClock(AutomationOptions options, std::function<Date()> clock) {
    if (!options.clock) options.clock = std::move(clock);
    return options;
}

}  // namespace

SiteWorld::SiteWorld(QRVLog& log, InterfaceFiles& interfaceFiles, std::string scriptsFolder,
                     SiteWriter& writer, Player::Options player, AutomationOptions automation, Clock clock)
    : LiveWorld(log, interfaceFiles, scriptsFolder, std::move(clock)),
      m_fires(writer, [this] { return now(); }),
      m_queue(mailbox(), m_fires),
      m_effects(m_fires, writer, log, [this] { return now(); }),
      m_files(LiveWorld::files(), std::move(scriptsFolder),
              [this](const std::string& name, const std::string& reason) { scriptMissed(name, reason); }),
      m_player(std::move(player)),
      m_soundFiles(m_player),
      m_ledgerSpeech(m_player, m_effects),
      m_ledgerSound(m_player, m_effects),
      m_speech(m_ledgerSpeech, mailbox()),
      m_sound(m_soundFiles, m_ledgerSound),
      m_automation(m_effects, withClock(std::move(automation), [this] { return now(); })) {}

// A row passes over a script that it cannot read; people want to know.
void SiteWorld::scriptMissed(const std::string& name, const std::string& reason) {
    if (!mailbox().isMainThread()) return;
    auto record = m_effects.make(EffectRecord::Script, name.empty() ? "script" : name, CallNote::current());
    m_effects.ended(std::move(record), now(), "not started", reason, /*failed=*/true);
}

SiteWorld::~SiteWorld() {
    stopPlayer();
}

void SiteWorld::stopEffects() {
    m_effects.stopEffects();
    m_soundFiles.stopWaiting();
    m_ledgerSpeech.stopSpeaking();
}

void SiteWorld::stopPlayer() {
    stopEffects();
    m_player.stop();
}

}  // namespace vigil
