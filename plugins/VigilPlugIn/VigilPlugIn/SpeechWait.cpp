#include "plugins/VigilPlugIn/VigilPlugIn/SpeechWait.hpp"

namespace vigil {

void speakAndWait(HostWorld& world, const std::optional<std::string>& text,
                  SpeechSynthesizerDelegate& delegate, const std::atomic<bool>& done) {
    const auto synthesizer = world.speech().makeSynthesizer();
    synthesizer->setDelegate(&delegate);
    synthesizer->startSpeakingString(text);
    while (!done)
        world.currentRunLoop().runUntil(world.now().plus(kSpeechStep));
}

}  // namespace vigil
