#include "host/services/ToldSinks.hpp"

#include "host/services/SpokenText.hpp"

namespace vigil {

std::string leftOutText(std::size_t leftOut) {
    if (leftOut == 0) return {};
    return "only its first " + std::to_string(kSpokenCharacters) + " characters were spoken, " +
           std::to_string(leftOut) + " were left out";
}

SpeechSink::Id ToldSpeech::speak(const std::optional<std::string>& text, Ended ended) {
    const SpokenText spoken = spokenText(text);
    if (spoken.text.empty()) {
        m_tell("not spoken: there is nothing to say");
        ended(false);
        return 0;
    }
    return m_player.speak(spoken.text,
                          {.ended = [tell = m_tell, ended = std::move(ended), spoken](const PlayEnd& end) {
                              const bool finished = end.outcome == PlayOutcome::Finished;
                              if (!finished)
                                  tell("not spoken: " + spoken.text + ": " + end.detail);
                              else if (spoken.leftOut != 0)
                                  tell("not spoken whole: " + leftOutText(spoken.leftOut));
                              ended(finished && spoken.leftOut == 0);
                          }});
}

bool ToldSound::play(const std::string& path, const std::optional<std::string>& refusal) {
    if (refusal) {
        m_tell("not played: " + path + ": " + *refusal);
        return false;
    }
    m_player.play(path, {.ended = [tell = m_tell, path](const PlayEnd& end) {
                      if (end.outcome != PlayOutcome::Finished)
                          tell("not played: " + path + ": " + end.detail);
                  }});
    return true;
}

}  // namespace vigil
