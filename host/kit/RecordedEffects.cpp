#include "host/kit/RecordedEffects.hpp"

#include <utility>

#include "platform/CallNote.hpp"
#include "platform/World.hpp"

namespace vigil {
namespace {

class RecordedPlayer : public AudioPlayer {
  public:
    explicit RecordedPlayer(std::string path) : m_path(std::move(path)) {}
    const std::string& path() const override { return m_path; }
    void stop() override {}

  private:
    const std::string m_path;
};

}  // namespace

class RecordedEffects::Synthesizer : public SpeechSynthesizer {
  public:
    explicit Synthesizer(RecordedEffects& effects) : m_effects(effects) {}

    void setDelegate(SpeechSynthesizerDelegate* delegate) override { m_delegate = delegate; }

    bool startSpeakingString(const std::optional<std::string>& text) override {
        const bool anything = text && !text->empty();
        if (anything) m_effects.note(Kind::Speech, *text);
        if (m_delegate) m_delegate->speechSynthesizerDidFinishSpeaking(*this, /*finished=*/anything);
        return anything;
    }

  private:
    RecordedEffects& m_effects;
    SpeechSynthesizerDelegate* m_delegate = nullptr;
};

std::shared_ptr<SpeechSynthesizer> RecordedEffects::makeSynthesizer() {
    return std::make_shared<Synthesizer>(*this);
}

std::shared_ptr<AudioPlayer> RecordedEffects::makePlayer(const std::string& path) {
    return std::make_shared<RecordedPlayer>(path);
}

bool RecordedEffects::play(const std::string& path) {
    note(Kind::Sound, path);
    return true;
}

Result<Done> RecordedEffects::run(const std::string& source) {
    note(Kind::AutomationScript, source);
    return Done{};
}

std::vector<RecordedEffects::Entry> RecordedEffects::take() {
    return std::exchange(m_entries, {});
}

void RecordedEffects::note(Kind kind, std::string text) {
    m_entries.push_back({m_world.now(), kind, std::move(text), CallNote::current()});
}

}  // namespace vigil
