#pragma once

#include <memory>

#include "host/services/Mailbox.hpp"
#include "host/services/PlaySinks.hpp"
#include "platform/Speech.hpp"

namespace vigil {

/// The voices of a world, which speak through a sink. Every report comes through the mailbox, so that it is
/// heard by whichever loop the main thread turns, at every depth. Main thread.
class LinuxSpeech : public SpeechOutput {
  public:
    /// Both are the caller's and outlive this and its synthesizers.
    LinuxSpeech(SpeechSink& sink, Mailbox& mailbox) : m_sink(sink), m_mailbox(mailbox) {}
    std::shared_ptr<SpeechSynthesizer> makeSynthesizer() override;

  private:
    SpeechSink& m_sink;
    Mailbox& m_mailbox;
};

}  // namespace vigil
