#include "host/run/LedgerServices.hpp"

#include <optional>
#include <utility>

#include "platform/CallNote.hpp"

namespace vigil {
namespace {

std::string fileName(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

/// A synthesizer with a record of what it says.
class NotedSynthesizer : public SpeechSynthesizer, private SpeechSynthesizerDelegate {
  public:
    NotedSynthesizer(std::shared_ptr<SpeechSynthesizer> inner, EffectLedger& ledger)
        : m_inner(std::move(inner)), m_ledger(ledger) {
        m_inner->setDelegate(this);
    }
    ~NotedSynthesizer() override {
        // Whoever asked does not wait for it any more.
        m_inner->setDelegate(nullptr);
        end(false);
    }

    void setDelegate(SpeechSynthesizerDelegate* delegate) override { m_delegate = delegate; }

    bool startSpeakingString(const std::optional<std::string>& text) override {
        m_record = m_ledger.make(EffectRecord::Speech, text.value_or(""), CallNote::current());
        m_ledger.started(*m_record, m_ledger.now());
        return m_inner->startSpeakingString(text);
    }

  private:
    void speechSynthesizerDidFinishSpeaking(SpeechSynthesizer&, bool finished) override {
        end(finished);
        if (m_delegate) m_delegate->speechSynthesizerDidFinishSpeaking(*this, finished);
    }

    void end(bool finished) {
        if (!m_record) return;
        m_ledger.ended(*std::exchange(m_record, std::nullopt), m_ledger.now(),
                       finished ? "succeeded" : "failed", finished ? "" : "it was not spoken to its end",
                       !finished);
    }

    const std::shared_ptr<SpeechSynthesizer> m_inner;
    EffectLedger& m_ledger;
    SpeechSynthesizerDelegate* m_delegate = nullptr;
    std::optional<EffectRecord> m_record;
};

/// "Mail" or "Sms" by the application that the script addresses; people read the whole text in the detail.
EffectRecord::Kind kindOf(const std::string& source) {
    return source.find("application \"Mail\"") == std::string::npos ? EffectRecord::Sms : EffectRecord::Mail;
}

}  // namespace

std::shared_ptr<SpeechSynthesizer> LedgerSpeech::makeSynthesizer() {
    return std::make_shared<NotedSynthesizer>(m_speech.makeSynthesizer(), m_ledger);
}

bool LedgerSound::play(const std::string& path) {
    auto record = m_ledger.make(EffectRecord::Sound, fileName(path), CallNote::current());
    m_ledger.started(record, m_ledger.now());
    const bool plays = m_sound.play(path);
    m_ledger.ended(std::move(record), m_ledger.now(), plays ? "succeeded" : "failed",
                   plays ? "" : "it was not played", !plays);
    return plays;
}

Result<Done> LedgerAutomation::run(const std::string& source) {
    auto record = m_ledger.make(kindOf(source), source.substr(0, source.find('\n')), CallNote::current());
    m_ledger.started(record, m_ledger.now());
    auto outcome = m_scripts.run(source);
    m_ledger.ended(std::move(record), m_ledger.now(), outcome ? "succeeded" : "failed",
                   outcome ? source : outcome.error().message, !outcome);
    return outcome;
}

}  // namespace vigil
