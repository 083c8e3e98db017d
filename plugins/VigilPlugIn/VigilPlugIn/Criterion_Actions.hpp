#pragma once

#include "plugins/VigilPlugIn/VigilPlugIn/Criterion.hpp"

// The six actions. Each builds one subtree, its root named for the action with one level of children, and
// acts on the display value at index 1 of its row. None reports failure to its caller.
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
};

/// "Send an SMS message to", a text field with the number. Not offered by the editor; rows that hold it are
/// kept.
class SendSMSCriterion : public Criterion {
  public:
    template <class T = SendSMSCriterion>
    static std::shared_ptr<T> criterionWithAgent(const Agent& agent) {
        return build<T>(agent, "Send an SMS message to", textFieldChild(agent));
    }
    std::string className() const override;
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
};

/// "Speak Text", a text field with the text.
class SpeakTextCriterion : public Criterion {
  public:
    template <class T = SpeakTextCriterion>
    static std::shared_ptr<T> criterionWithAgent(const Agent& agent) {
        return build<T>(agent, "Speak Text", textFieldChild(agent));
    }
    std::string className() const override;
};

/// "Speak Conditions", a choice of "Yes" and "No".
class SayCurrentConditionsCriterion : public Criterion {
  public:
    template <class T = SayCurrentConditionsCriterion>
    static std::shared_ptr<T> criterionWithAgent(const Agent& agent) {
        return build<T>(agent, "Speak Conditions", yesAndNo(agent));
    }
    std::string className() const override;
};

}  // namespace vigil
