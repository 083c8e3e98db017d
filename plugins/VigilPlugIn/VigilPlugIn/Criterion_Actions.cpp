#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Actions.hpp"

#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Display.hpp"

namespace vigil {

CriterionList textFieldChild(const Criterion::Agent& agent) {
    return {TextFieldCriterion::criterionWithAgent(agent)};
}

CriterionList popUpChild(const Criterion::Agent& agent) {
    return {PopUpCriterion::criterionWithAgent(agent)};
}

CriterionList yesAndNo(const Criterion::Agent& agent) {
    return {Criterion::criterionWithAgent(agent, "Yes"), Criterion::criterionWithAgent(agent, "No")};
}

std::string SendEmailCriterion::className() const {
    return "SendEmailCriterion";
}

std::string SendSMSCriterion::className() const {
    return "SendSMSCriterion";
}

std::string RunScriptCriterion::className() const {
    return "RunScriptCriterion";
}

std::string PlaySoundCriterion::className() const {
    return "PlaySoundCriterion";
}

std::string SpeakTextCriterion::className() const {
    return "SpeakTextCriterion";
}

std::string SayCurrentConditionsCriterion::className() const {
    return "SayCurrentConditionsCriterion";
}

}  // namespace vigil
