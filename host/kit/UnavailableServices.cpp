#include "host/kit/UnavailableServices.hpp"

#include "host/kit/StandardLog.hpp"
#include "platform/Object.hpp"

namespace vigil {
namespace {

class SilentSynthesizer : public SpeechSynthesizer {
  public:
    explicit SilentSynthesizer(QRVLog& log) : m_log(log) {}

    void setDelegate(SpeechSynthesizerDelegate* delegate) override { m_delegate = delegate; }

    bool startSpeakingString(const std::optional<std::string>& text) override {
        m_log.logLevel(kLogProblem, "speech is not available: not spoken: " + text.value_or(kAbsentText));
        if (m_delegate) m_delegate->speechSynthesizerDidFinishSpeaking(*this, /*finished=*/false);
        return false;
    }

  private:
    QRVLog& m_log;
    SpeechSynthesizerDelegate* m_delegate = nullptr;
};

}  // namespace

std::shared_ptr<SpeechSynthesizer> UnavailableSpeech::makeSynthesizer() {
    return std::make_shared<SilentSynthesizer>(m_log);
}

// No line here: whoever makes a player asks for the sound, too, and one line tells of both.
std::shared_ptr<AudioPlayer> UnavailableSound::makePlayer(const std::string&) {
    return nullptr;
}

bool UnavailableSound::play(const std::string& path) {
    m_log.logLevel(kLogProblem, "sound is not available: not played: " + path);
    return false;
}

Result<Done> UnavailableAutomationScripts::run(const std::string& source) {
    Error error{"automation scripts are not available: not run: " + source};
    m_log.logLevel(kLogProblem, error.message);
    return error;
}

}  // namespace vigil
