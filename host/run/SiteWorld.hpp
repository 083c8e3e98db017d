#pragma once

#include <string>

#include "host/kit/LiveWorld.hpp"
#include "host/run/EffectLedger.hpp"
#include "host/run/FireDesk.hpp"
#include "host/run/FireQueue.hpp"
#include "host/run/LedgerAutomation.hpp"
#include "host/run/LedgerSound.hpp"
#include "host/run/LedgerSpeech.hpp"
#include "host/run/NotedFiles.hpp"
#include "host/services/LinuxSound.hpp"
#include "host/services/LinuxSpeech.hpp"
#include "host/services/Player.hpp"
#include "host/services/SoundFiles.hpp"
#include "host/site/SiteWriter.hpp"

namespace vigil {

/// The world of a site that runs: a live one in which fires and what they do are written down. The thread
/// that makes it is its main thread.
class SiteWorld : public LiveWorld {
  public:
    /// All are the caller's and outlive the world. Without a clock of their own mail and messages live by the
    /// world's.
    SiteWorld(QRVLog& log, InterfaceFiles& interfaceFiles, std::string scriptsFolder, SiteWriter& writer,
              Player::Options player, AutomationOptions automation, Clock clock = {});
    ~SiteWorld() override;

    MainQueue& mainQueue() override { return m_queue; }
    Files& files() override { return m_files; }
    SpeechOutput& speech() override { return m_speech; }
    SoundOutput& sound() override { return m_sound; }
    LedgerAutomation& automationScripts() override { return m_automation; }

    FireDesk& fires() { return m_fires; }
    EffectLedger& effects() { return m_effects; }
    NotedFiles& notedFiles() { return m_files; }

    /// Begins to look at the sounds of a module's folder, so that nobody waits when one is to be played.
    void lookAtSounds(const std::string& folder) { m_soundFiles.lookAt(folder); }
    /// No effect begins any more, and every speech ends, so that whoever waits for one goes on. Any thread.
    void stopEffects();
    /// The same, and ends what plays; waits until each has its end in the ledger.
    void stopPlayer();

  private:
    void scriptMissed(const std::string& name, const std::string& reason);

    FireDesk m_fires;
    FireQueue m_queue;
    EffectLedger m_effects;
    NotedFiles m_files;
    Player m_player;
    SoundFiles m_soundFiles;
    LedgerSpeech m_ledgerSpeech;
    LedgerSound m_ledgerSound;
    LinuxSpeech m_speech;
    LinuxSound m_sound;
    LedgerAutomation m_automation;
};

}  // namespace vigil
