#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/AutomationScripts.hpp"
#include "platform/Date.hpp"
#include "platform/Object.hpp"
#include "platform/Sound.hpp"
#include "platform/Speech.hpp"

namespace vigil {

class World;

/// Notes what would have been spoken, played and automated, with the world's time. Every file counts as
/// playable, and speech ends at once, so that no time passes. Main thread.
class RecordedEffects : public SpeechOutput, public SoundOutput, public AutomationScripts {
  public:
    enum class Kind { Speech, Sound, AutomationScript };

    struct Entry {
        Date time;
        Kind kind;
        std::string text;                      ///< what is spoken, the sound's path, the script
        std::shared_ptr<const Object> plugIn;  ///< on whose behalf, where that is known
    };

    explicit RecordedEffects(World& world) : m_world(world) {}

    const std::vector<Entry>& entries() const { return m_entries; }
    /// The entries so far, which are then forgotten here: a long replay keeps none.
    std::vector<Entry> take();

    std::shared_ptr<SpeechSynthesizer> makeSynthesizer() override;
    /// Not noted: a player alone is not heard.
    std::shared_ptr<AudioPlayer> makePlayer(const std::string& path) override;
    bool play(const std::string& path) override;
    Result<Done> run(const std::string& source) override;

  private:
    class Synthesizer;
    void note(Kind kind, std::string text);

    World& m_world;
    std::vector<Entry> m_entries;
};

}  // namespace vigil
