#include "host/services/PlaySinks.hpp"

namespace vigil {

SpeechSink::~SpeechSink() = default;
SoundSink::~SoundSink() = default;

}  // namespace vigil
