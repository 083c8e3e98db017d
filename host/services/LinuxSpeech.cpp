#include "host/services/LinuxSpeech.hpp"

#include <cstdint>
#include <map>
#include <utility>

#include "platform/World.hpp"

namespace vigil {
namespace {

class LinuxSynthesizer : public SpeechSynthesizer, public std::enable_shared_from_this<LinuxSynthesizer> {
  public:
    LinuxSynthesizer(SpeechSink& sink, Mailbox& mailbox) : m_sink(sink), m_mailbox(mailbox) {}
    ~LinuxSynthesizer() override {
        for (const auto& [number, id] : m_running)
            m_sink.stop(id);
    }

    void setDelegate(SpeechSynthesizerDelegate* delegate) override { m_delegate = delegate; }

    bool startSpeakingString(const std::optional<std::string>& text) override {
        const std::uint64_t number = ++m_lastNumber;
        // A mailbox that is closed has no loop that waits.
        const auto ended = [self = weak_from_this(), &mailbox = m_mailbox, world = World::current(),
                            number](bool finished) {
            mailbox.dispatchReport([self, world, number, finished] {
                const auto synthesizer = self.lock();
                if (synthesizer) synthesizer->ended(number, finished, world);
            });
        };
        const SpeechSink::Id id = m_sink.speak(text, ended);
        m_running[number] = id;
        return true;
    }

  private:
    void ended(std::uint64_t number, bool finished, World* world) {
        m_running.erase(number);
        if (!m_delegate) return;
        // the call into a plug-in: in the world in which it asked
        std::optional<World::Scope> scope;
        if (world) scope.emplace(*world);
        m_delegate->speechSynthesizerDidFinishSpeaking(*this, finished);
    }

    SpeechSink& m_sink;
    Mailbox& m_mailbox;
    SpeechSynthesizerDelegate* m_delegate = nullptr;
    std::uint64_t m_lastNumber = 0;
    std::map<std::uint64_t, SpeechSink::Id> m_running;
};

}  // namespace

std::shared_ptr<SpeechSynthesizer> LinuxSpeech::makeSynthesizer() {
    return std::make_shared<LinuxSynthesizer>(m_sink, m_mailbox);
}

}  // namespace vigil
