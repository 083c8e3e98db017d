#include "platform/AutomationScripts.hpp"
#include "platform/Sound.hpp"
#include "platform/Speech.hpp"

namespace vigil {

SpeechSynthesizerDelegate::~SpeechSynthesizerDelegate() = default;
SpeechSynthesizer::~SpeechSynthesizer() = default;
SpeechOutput::~SpeechOutput() = default;
AudioPlayer::~AudioPlayer() = default;
SoundOutput::~SoundOutput() = default;
AutomationScripts::~AutomationScripts() = default;

}  // namespace vigil
