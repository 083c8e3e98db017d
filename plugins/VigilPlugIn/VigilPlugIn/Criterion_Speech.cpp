#include "plugins/VigilPlugIn/VigilPlugIn/ActionTexts.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Actions.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/SpeechWait.hpp"

namespace vigil {
namespace {

/// What is said of the conditions: a placeholder that is meant and spoken as it stands. Never absent as yet.
std::optional<std::string> detailsText() {
    return "?????";
}

}  // namespace

void SpeakTextCriterion::performActionWithDisplayValues(const DisplayValueList& displayValues) {
    setSpeechDone(false);
    const auto text = stringValue(displayValues.at(1));
    if (HostWorld* host = world()) speakAndWait(*host, text, *this, m_speechDone);
}

// Whether the text was spoken whole makes no difference: the wait ends.
void SpeakTextCriterion::speechSynthesizerDidFinishSpeaking(SpeechSynthesizer&, bool) {
    setSpeechDone(true);
}

void SayCurrentConditionsCriterion::performActionWithDisplayValues(const DisplayValueList& displayValues) {
    setSpeechDone(false);
    // The name of the chosen leaf and nothing else; a control that shows "No" is not that text.
    const auto* choice = std::get_if<std::string>(&displayValues.at(1));
    if (choice && *choice == "No") return;
    std::string sentence = filled("There is a Vigil for %@. ", {siteNameText(agent())});
    sentence += detailsText().value_or("Nothing has occurred yet");
    if (HostWorld* host = world()) speakAndWait(*host, sentence, *this, m_speechDone);
}

void SayCurrentConditionsCriterion::speechSynthesizerDidFinishSpeaking(SpeechSynthesizer&, bool) {
    setSpeechDone(true);
}

}  // namespace vigil
