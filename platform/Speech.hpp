#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/Export.hpp"

namespace vigil {

class SpeechSynthesizer;

/// Hears when a synthesizer has ended.
class VIGIL_KIT SpeechSynthesizerDelegate {
  public:
    virtual ~SpeechSynthesizerDelegate();
    /// Speaking has ended; `finished` tells whether the text was spoken whole. (Keyword form:
    /// speechSynthesizer:didFinishSpeaking:)
    virtual void speechSynthesizerDidFinishSpeaking(SpeechSynthesizer& synthesizer, bool finished) = 0;
};

/// Speaks one text, with the default voice and rate. Main thread.
class VIGIL_KIT SpeechSynthesizer {
  public:
    virtual ~SpeechSynthesizer();

    /// Not owned; it outlives the synthesizer. Set before speaking begins.
    virtual void setDelegate(SpeechSynthesizerDelegate* delegate) = 0;

    /// Begins to speak and returns. False when speaking could not begin.
    ///
    /// Every call is answered by exactly one report to the delegate, on the main thread: by its run loop, or,
    /// when there is nothing to wait for (no text, an empty one, no voice), from within this call. Only a
    /// synthesizer that goes before its speech has ended ends it and reports no more.
    virtual bool startSpeakingString(const std::optional<std::string>& text) = 0;
};

/// The voices of a world. Main thread.
class VIGIL_KIT SpeechOutput {
  public:
    virtual ~SpeechOutput();
    /// A new one, never absent.
    virtual std::shared_ptr<SpeechSynthesizer> makeSynthesizer() = 0;
};

}  // namespace vigil
