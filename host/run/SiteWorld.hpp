#pragma once

#include <string>

#include "host/kit/LiveWorld.hpp"
#include "host/run/EffectLedger.hpp"
#include "host/run/FireDesk.hpp"
#include "host/run/FireQueue.hpp"
#include "host/run/LedgerServices.hpp"
#include "host/run/NotedFiles.hpp"
#include "host/site/SiteWriter.hpp"

namespace vigil {

/// The world of a site that runs: a live one in which fires and what they do are written down. The thread
/// that makes it is its main thread.
class SiteWorld : public LiveWorld {
  public:
    /// All are the caller's and outlive the world.
    SiteWorld(QRVLog& log, InterfaceFiles& interfaceFiles, std::string scriptsFolder, SiteWriter& writer,
              Clock clock = {});

    MainQueue& mainQueue() override { return m_queue; }
    Files& files() override { return m_files; }
    SpeechOutput& speech() override { return m_speech; }
    SoundOutput& sound() override { return m_sound; }
    AutomationScripts& automationScripts() override { return m_automation; }

    FireDesk& fires() { return m_fires; }
    EffectLedger& effects() { return m_effects; }
    NotedFiles& notedFiles() { return m_files; }

  private:
    void scriptMissed(const std::string& name, const std::string& reason);

    FireDesk m_fires;
    FireQueue m_queue;
    EffectLedger m_effects;
    NotedFiles m_files;
    LedgerSpeech m_speech;
    LedgerSound m_sound;
    LedgerAutomation m_automation;
};

}  // namespace vigil
