#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Date.hpp"
#include "platform/Speech.hpp"
#include "tests/support/EffectJournal.hpp"

namespace vigil {

class World;

/// Speech that a test conducts: how long it takes by the world's clock, how it ends, and from where that is
/// reported. Journal: "speak TEXT" where it begins, "spoken" or "not spoken" before each report. Main thread.
class FakeSpeech : public SpeechOutput {
  public:
    enum class Report {
        Within,       ///< from within `startSpeakingString`
        Posted,       ///< through the main queue
        Loop,         ///< by the run loop, once `duration` has passed
        OtherThread,  ///< the same, on a thread of its own
        ByHand,       ///< when the test says `end`; a speech that hangs never ends at all
    };

    FakeSpeech(World& world, EffectJournal& journal) : m_world(world), m_journal(journal) {}

    Report report = Report::Within;
    double duration = 1.0;  ///< seconds
    bool finished = true;   ///< what the report says
    bool begins = true;     ///< what `startSpeakingString` answers

    struct Speech {
        std::optional<std::string> text;
        Date begun;
        bool hadDelegate = false;
    };
    std::vector<Speech> speeches;

    /// Synthesizers that are still held by somebody.
    int living() const { return m_living; }
    /// Ends every speech under way, on the calling thread.
    void end();
    /// Ends those that are due by the world's clock; the run loop calls it.
    void endWhatIsDue();

    std::shared_ptr<SpeechSynthesizer> makeSynthesizer() override;

  private:
    class Synthesizer;
    struct UnderWay {
        std::weak_ptr<Synthesizer> synthesizer;
        Date due;
    };
    void begin(Synthesizer& synthesizer, const std::optional<std::string>& text);
    void tell(const std::weak_ptr<Synthesizer>& synthesizer);

    World& m_world;
    EffectJournal& m_journal;
    std::vector<UnderWay> m_underWay;
    int m_living = 0;
};

}  // namespace vigil
