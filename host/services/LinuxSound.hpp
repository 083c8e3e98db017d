#pragma once

#include "host/services/PlaySinks.hpp"
#include "host/services/SoundFiles.hpp"
#include "platform/Sound.hpp"

namespace vigil {

/// The sound of a world, which goes to a sink. Main thread.
class LinuxSound : public SoundOutput {
  public:
    /// Both are the caller's and outlive this.
    LinuxSound(SoundFiles& files, SoundSink& sink) : m_files(files), m_sink(sink) {}

    /// An inert handle, which plays nothing. A file that cannot be played is no line anywhere: whoever makes
    /// a player asks for the sound, too, and one line tells of both.
    std::shared_ptr<AudioPlayer> makePlayer(const std::string& path) override;
    /// True when the sound was taken; what becomes of it the sink knows.
    bool play(const std::string& path) override { return m_sink.play(path, m_files.refusal(path)); }

  private:
    SoundFiles& m_files;
    SoundSink& m_sink;
};

}  // namespace vigil
