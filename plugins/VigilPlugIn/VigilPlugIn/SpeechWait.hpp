#pragma once

#include <atomic>
#include <optional>
#include <string>

#include "host_contract/HostWorld.hpp"
#include "platform/Speech.hpp"

namespace vigil {

/// How long the run loop turns before it is asked again whether speech has ended, in seconds.
inline constexpr double kSpeechStep = 0.25;

/// Speaks the text and returns when `done` is set, which is the delegate's to do when it hears of the end.
/// Meanwhile the run loop of the thread turns and serves whatever arrives. There is no bound to the wait:
/// that every speech is answered is the world's promise. Main thread.
void speakAndWait(HostWorld& world, const std::optional<std::string>& text,
                  SpeechSynthesizerDelegate& delegate, const std::atomic<bool>& done);

}  // namespace vigil
