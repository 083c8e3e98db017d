#pragma once

#include <memory>
#include <string>

#include "platform/Export.hpp"

namespace vigil {

/// A sound file made ready, for its owner to stop; nothing here starts it. Main thread.
class VIGIL_KIT AudioPlayer {
  public:
    virtual ~AudioPlayer();
    virtual const std::string& path() const = 0;
    virtual void stop() = 0;
};

/// The sound of a world. Main thread.
class VIGIL_KIT SoundOutput {
  public:
    virtual ~SoundOutput();

    /// Nothing when the file cannot be read or decoded.
    virtual std::shared_ptr<AudioPlayer> makePlayer(const std::string& path) = 0;

    /// Begins to play the file and returns; it is heard to its end, beside whatever sounds already. False
    /// when the file cannot be read or decoded, or nothing can be heard.
    virtual bool play(const std::string& path) = 0;
};

}  // namespace vigil
