#pragma once

#include "plugins/VigilPlugIn/VigilPlugIn/Criterion.hpp"

// The six actions. Each builds one subtree, its root named for the action with one level of children, and
// acts on the display value at index 1 of its row. None reports failure to its caller.

namespace vigil {

/// "Send an email to", a text field with the address. Not offered by the editor; rows that hold it are kept.
class SendEmailCriterion : public Criterion {
  public:
    static std::shared_ptr<SendEmailCriterion> criterionWithAgent(const Agent& agent);
    std::string className() const override;
};

/// "Send an SMS message to", a text field with the number. Not offered by the editor; rows that hold it are
/// kept.
class SendSMSCriterion : public Criterion {
  public:
    static std::shared_ptr<SendSMSCriterion> criterionWithAgent(const Agent& agent);
    std::string className() const override;
};

/// "Run script", a text field with the name of a file in the user's scripts folder and, behind single blanks,
/// its arguments.
class RunScriptCriterion : public Criterion {
  public:
    /// Handed to the agent with every script, in seconds.
    static constexpr int kTimeout = 60;

    static std::shared_ptr<RunScriptCriterion> criterionWithAgent(const Agent& agent);
    std::string className() const override;
    /// Reads the script and hands its text to the agent. A script that cannot be read is not run; what
    /// becomes of one that is handed over is the agent's to tell.
    void performActionWithDisplayValues(const DisplayValueList& displayValues) override;
};

/// "Play Sound", a pop-up button with the module's sounds.
class PlaySoundCriterion : public Criterion {
  public:
    static std::shared_ptr<PlaySoundCriterion> criterionWithAgent(const Agent& agent);
    std::string className() const override;
};

/// "Speak Text", a text field with the text.
class SpeakTextCriterion : public Criterion {
  public:
    static std::shared_ptr<SpeakTextCriterion> criterionWithAgent(const Agent& agent);
    std::string className() const override;
};

/// "Speak Conditions", a choice of "Yes" and "No".
class SayCurrentConditionsCriterion : public Criterion {
  public:
    static std::shared_ptr<SayCurrentConditionsCriterion> criterionWithAgent(const Agent& agent);
    std::string className() const override;
};

}  // namespace vigil
