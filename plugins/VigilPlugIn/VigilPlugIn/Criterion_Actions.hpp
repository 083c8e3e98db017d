#pragma once

#include <atomic>
#include <string_view>

#include "platform/Sound.hpp"
#include "platform/Speech.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/Criterion.hpp"

// The six actions. Each builds one subtree, its root named for the action with one level of children, and
// acts on the display value at index 1 of its row; a list without one throws std::out_of_range. None reports
// failure to its caller. Main thread.
//
// A class that derives from an action names itself to the factory, `criterionWithAgent<Louder>(agent)`, and
// gets a root of its own class with the same name and children.

namespace vigil {

/// The children of an action's root: one text field, one pop-up button of sounds, or the leaves "Yes" and
/// "No".
CriterionList textFieldChild(const Criterion::Agent& agent);
CriterionList popUpChild(const Criterion::Agent& agent);
CriterionList yesAndNo(const Criterion::Agent& agent);

/// "Send an email to", a text field with the address. Not offered by the editor; rows that hold it are kept.
class SendEmailCriterion : public Criterion {
  public:
    template <class T = SendEmailCriterion>
    static std::shared_ptr<T> criterionWithAgent(const Agent& agent) {
        return build<T>(agent, "Send an email to", textFieldChild(agent));
    }
    std::string className() const override;
    /// Whether mail may be sent there: one address, in lower case, its domain with a dot. Takes time in
    /// proportion to the text. (Keyword form: validateEmail:)
    static bool validateEmail(std::string_view address);
    /// Runs the script that brings the mail application up and the one that sends the message, for an
    /// address that passes `validateEmail`; for any other nothing.
    void performActionWithDisplayValues(const DisplayValueList& displayValues) override;
};

/// "Send an SMS message to", a text field with the number, without a plus. Not offered by the editor; rows
/// that hold it are kept.
class SendSMSCriterion : public Criterion {
  public:
    template <class T = SendSMSCriterion>
    static std::shared_ptr<T> criterionWithAgent(const Agent& agent) {
        return build<T>(agent, "Send an SMS message to", textFieldChild(agent));
    }
    std::string className() const override;
    /// Runs the script that sends the message. A text that is no number is a line in the log instead.
    void performActionWithDisplayValues(const DisplayValueList& displayValues) override;
};

/// "Run script", a text field with the name of a file in the user's scripts folder and, behind single blanks,
/// its arguments.
class RunScriptCriterion : public Criterion {
  public:
    /// Handed to the agent with every script, in seconds.
    static constexpr int kTimeout = 60;

    template <class T = RunScriptCriterion>
    static std::shared_ptr<T> criterionWithAgent(const Agent& agent) {
        return build<T>(agent, "Run script", textFieldChild(agent));
    }
    std::string className() const override;
    /// Reads the script and hands its text to the agent. A script that cannot be read is not run; what
    /// becomes of one that is handed over is the agent's to tell.
    void performActionWithDisplayValues(const DisplayValueList& displayValues) override;
};

/// "Play Sound", a pop-up button with the module's sounds.
class PlaySoundCriterion : public Criterion {
  public:
    template <class T = PlaySoundCriterion>
    static std::shared_ptr<T> criterionWithAgent(const Agent& agent) {
        return build<T>(agent, "Play Sound", popUpChild(agent));
    }
    std::string className() const override;
    /// Begins to play the chosen sound and returns; one that plays already goes on beside it.
    void performActionWithDisplayValues(const DisplayValueList& displayValues) override;

    /// The player made for the last sound, which is never started. Absent before the first performance and
    /// for a file that cannot be played.
    const std::shared_ptr<AudioPlayer>& audioPlayer() const { return m_audioPlayer; }
    void setAudioPlayer(std::shared_ptr<AudioPlayer> player) { m_audioPlayer = std::move(player); }
    /// Full path of the file chosen last.
    std::optional<std::string> alertWavFileName() const { return m_alertWavFileName.get(); }
    void setAlertWavFileName(std::optional<std::string> path) { m_alertWavFileName.set(std::move(path)); }

  private:
    std::shared_ptr<AudioPlayer> m_audioPlayer;
    Property<std::optional<std::string>> m_alertWavFileName;
};

/// "Speak Text", a text field with the text.
class SpeakTextCriterion : public Criterion, public SpeechSynthesizerDelegate {
  public:
    template <class T = SpeakTextCriterion>
    static std::shared_ptr<T> criterionWithAgent(const Agent& agent) {
        return build<T>(agent, "Speak Text", textFieldChild(agent));
    }
    std::string className() const override;
    /// Speaks the text and returns when speech has ended; the run loop turns meanwhile.
    void performActionWithDisplayValues(const DisplayValueList& displayValues) override;
    void speechSynthesizerDidFinishSpeaking(SpeechSynthesizer& synthesizer, bool finished) override;

    /// False from the start of a performance until its speech has ended. Any thread.
    bool speechDone() const { return m_speechDone; }
    void setSpeechDone(bool done) { m_speechDone = done; }

  private:
    std::atomic<bool> m_speechDone = false;
};

/// "Speak Conditions", a choice of "Yes" and "No".
class SayCurrentConditionsCriterion : public Criterion, public SpeechSynthesizerDelegate {
  public:
    template <class T = SayCurrentConditionsCriterion>
    static std::shared_ptr<T> criterionWithAgent(const Agent& agent) {
        return build<T>(agent, "Speak Conditions", yesAndNo(agent));
    }
    std::string className() const override;
    /// Speaks a sentence about the site and returns when speech has ended; for "No" it returns at once.
    void performActionWithDisplayValues(const DisplayValueList& displayValues) override;
    void speechSynthesizerDidFinishSpeaking(SpeechSynthesizer& synthesizer, bool finished) override;

    /// False from the start of a performance until its speech has ended. Any thread.
    bool speechDone() const { return m_speechDone; }
    void setSpeechDone(bool done) { m_speechDone = done; }

  private:
    std::atomic<bool> m_speechDone = false;
};

}  // namespace vigil
