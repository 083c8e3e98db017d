#include "tests/support/FakeSpeech.hpp"

#include <algorithm>
#include <thread>
#include <utility>

#include "platform/Object.hpp"
#include "platform/World.hpp"

namespace vigil {

class FakeSpeech::Synthesizer : public SpeechSynthesizer, public std::enable_shared_from_this<Synthesizer> {
  public:
    explicit Synthesizer(FakeSpeech& speech) : m_speech(speech) { ++m_speech.m_living; }
    ~Synthesizer() override { --m_speech.m_living; }

    void setDelegate(SpeechSynthesizerDelegate* delegate) override { m_delegate = delegate; }

    bool startSpeakingString(const std::optional<std::string>& text) override {
        m_speech.begin(*this, text);
        return m_speech.begins;
    }

    SpeechSynthesizerDelegate* delegate() const { return m_delegate; }

  private:
    FakeSpeech& m_speech;
    SpeechSynthesizerDelegate* m_delegate = nullptr;
};

std::shared_ptr<SpeechSynthesizer> FakeSpeech::makeSynthesizer() {
    return std::make_shared<Synthesizer>(*this);
}

void FakeSpeech::begin(Synthesizer& synthesizer, const std::optional<std::string>& text) {
    m_journal.add("speak " + text.value_or(kAbsentText));
    speeches.push_back({text, m_world.now(), synthesizer.delegate() != nullptr});
    const std::weak_ptr<Synthesizer> weak = synthesizer.weak_from_this();
    if (report == Report::Within)
        tell(weak);
    else if (report == Report::Posted)
        m_world.mainQueue().dispatchAsync([this, weak] { tell(weak); });
    else
        m_underWay.push_back({weak, m_world.now().plus(duration)});
}

void FakeSpeech::tell(const std::weak_ptr<Synthesizer>& weak) {
    const auto synthesizer = weak.lock();
    if (!synthesizer || !synthesizer->delegate()) return;
    m_journal.add(finished ? "spoken" : "not spoken");
    synthesizer->delegate()->speechSynthesizerDidFinishSpeaking(*synthesizer, finished);
}

void FakeSpeech::end() {
    for (const UnderWay& one : std::exchange(m_underWay, {}))
        tell(one.synthesizer);
}

void FakeSpeech::endWhatIsDue() {
    if (report == Report::ByHand) return;
    const Date now = m_world.now();
    const auto due = std::stable_partition(m_underWay.begin(), m_underWay.end(),
                                           [now](const UnderWay& one) { return now < one.due; });
    const std::vector<UnderWay> ending(due, m_underWay.end());
    m_underWay.erase(due, m_underWay.end());
    for (const UnderWay& one : ending) {
        if (report == Report::OtherThread)
            std::thread([this, &one] { tell(one.synthesizer); }).join();
        else
            tell(one.synthesizer);
    }
}

}  // namespace vigil
