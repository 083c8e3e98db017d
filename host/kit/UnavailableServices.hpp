#pragma once

#include "host_contract/QRVLog.hpp"
#include "platform/AutomationScripts.hpp"
#include "platform/Sound.hpp"
#include "platform/Speech.hpp"

// Services that this machine does not offer: every request is a line in the log and is answered at once, so
// that nobody waits for what cannot come. Main thread; the log outlives them.

namespace vigil {

class UnavailableSpeech : public SpeechOutput {
  public:
    explicit UnavailableSpeech(QRVLog& log) : m_log(log) {}
    /// One whose speech ends at once, not finished.
    std::shared_ptr<SpeechSynthesizer> makeSynthesizer() override;

  private:
    QRVLog& m_log;
};

class UnavailableSound : public SoundOutput {
  public:
    explicit UnavailableSound(QRVLog& log) : m_log(log) {}
    std::shared_ptr<AudioPlayer> makePlayer(const std::string& path) override;
    bool play(const std::string& path) override;

  private:
    QRVLog& m_log;
};

class UnavailableAutomationScripts : public AutomationScripts {
  public:
    explicit UnavailableAutomationScripts(QRVLog& log) : m_log(log) {}
    Result<Done> run(const std::string& source) override;

  private:
    QRVLog& m_log;
};

}  // namespace vigil
