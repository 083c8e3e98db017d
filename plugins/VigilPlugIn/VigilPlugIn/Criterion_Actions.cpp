#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Actions.hpp"

#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Display.hpp"

namespace vigil {

std::shared_ptr<SendEmailCriterion> SendEmailCriterion::criterionWithAgent(const Agent& agent) {
    return build<SendEmailCriterion>(agent, "Send an email to",
                                     {TextFieldCriterion::criterionWithAgent(agent)});
}

std::string SendEmailCriterion::className() const {
    return "SendEmailCriterion";
}

std::shared_ptr<SendSMSCriterion> SendSMSCriterion::criterionWithAgent(const Agent& agent) {
    return build<SendSMSCriterion>(agent, "Send an SMS message to",
                                   {TextFieldCriterion::criterionWithAgent(agent)});
}

std::string SendSMSCriterion::className() const {
    return "SendSMSCriterion";
}

std::shared_ptr<RunScriptCriterion> RunScriptCriterion::criterionWithAgent(const Agent& agent) {
    return build<RunScriptCriterion>(agent, "Run script", {TextFieldCriterion::criterionWithAgent(agent)});
}

std::string RunScriptCriterion::className() const {
    return "RunScriptCriterion";
}

std::shared_ptr<PlaySoundCriterion> PlaySoundCriterion::criterionWithAgent(const Agent& agent) {
    return build<PlaySoundCriterion>(agent, "Play Sound", {PopUpCriterion::criterionWithAgent(agent)});
}

std::string PlaySoundCriterion::className() const {
    return "PlaySoundCriterion";
}

std::shared_ptr<SpeakTextCriterion> SpeakTextCriterion::criterionWithAgent(const Agent& agent) {
    return build<SpeakTextCriterion>(agent, "Speak Text", {TextFieldCriterion::criterionWithAgent(agent)});
}

std::string SpeakTextCriterion::className() const {
    return "SpeakTextCriterion";
}

std::shared_ptr<SayCurrentConditionsCriterion> SayCurrentConditionsCriterion::criterionWithAgent(
    const Agent& agent) {
    return build<SayCurrentConditionsCriterion>(
        agent, "Speak Conditions",
        {Criterion::criterionWithAgent(agent, "Yes"), Criterion::criterionWithAgent(agent, "No")});
}

std::string SayCurrentConditionsCriterion::className() const {
    return "SayCurrentConditionsCriterion";
}

}  // namespace vigil
