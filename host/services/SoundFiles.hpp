#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "host/services/Player.hpp"

namespace vigil {

/// Which files can be played. A file is looked at once, by the player's process, and the verdict is kept for
/// as long as the file's size and the time of its last change stay. What says nothing about the file (the
/// player ended, no memory, it could not be read) is no verdict: the file is looked at anew when it is wanted
/// again. Main thread.
class SoundFiles {
  public:
    /// The player is the caller's and outlives this; `patience` is how long `refusal` waits for a verdict.
    explicit SoundFiles(Player& player, std::chrono::milliseconds patience = std::chrono::seconds(1));

    /// Begins to look at all sounds of a folder and returns.
    void lookAt(const std::string& folder);

    /// Why the file cannot be played; nothing when it can. Waits for the verdict about a file that is not
    /// known yet; one that does not come in time counts as a refusal until it comes.
    std::optional<std::string> refusal(const std::string& path);

    /// From now on nobody waits: what is not known is refused. Any thread.
    void stopWaiting();

  private:
    struct Shared;
    struct Stamp;
    void ask(const std::string& path, const Stamp& stamp);

    Player& m_player;
    const std::chrono::milliseconds m_patience;
    const std::shared_ptr<Shared> m_shared;
};

}  // namespace vigil
