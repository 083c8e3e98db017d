#pragma once

#include <memory>
#include <string>

#include "host/run/EffectLedger.hpp"
#include "platform/AutomationScripts.hpp"
#include "platform/Sound.hpp"
#include "platform/Speech.hpp"

// The services of a world with a record of each thing that they were asked for, and of what came of it. Main
// thread; what they stand before and the ledger are the caller's and outlive them.

namespace vigil {

class LedgerSpeech : public SpeechOutput {
  public:
    LedgerSpeech(SpeechOutput& speech, EffectLedger& ledger) : m_speech(speech), m_ledger(ledger) {}
    std::shared_ptr<SpeechSynthesizer> makeSynthesizer() override;

  private:
    SpeechOutput& m_speech;
    EffectLedger& m_ledger;
};

class LedgerSound : public SoundOutput {
  public:
    LedgerSound(SoundOutput& sound, EffectLedger& ledger) : m_sound(sound), m_ledger(ledger) {}
    std::shared_ptr<AudioPlayer> makePlayer(const std::string& path) override {
        return m_sound.makePlayer(path);
    }
    bool play(const std::string& path) override;

  private:
    SoundOutput& m_sound;
    EffectLedger& m_ledger;
};

class LedgerAutomation : public AutomationScripts {
  public:
    LedgerAutomation(AutomationScripts& scripts, EffectLedger& ledger)
        : m_scripts(scripts), m_ledger(ledger) {}
    Result<Done> run(const std::string& source) override;

  private:
    AutomationScripts& m_scripts;
    EffectLedger& m_ledger;
};

}  // namespace vigil
