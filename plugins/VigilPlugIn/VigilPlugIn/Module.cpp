#include "host_contract/Module.hpp"

#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Actions.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Display.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/ModuleClasses.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilToolbarPlugIn.hpp"

namespace vigil {
namespace {

template <class T>
std::shared_ptr<Object> make() {
    return std::make_shared<T>();
}

}  // namespace

const std::vector<ModuleClass>& moduleClasses() {
    static const std::vector<ModuleClass> classes = {
        {"QRVVigilPlugIn", &make<QRVVigilPlugIn>},
        {"QRVVigilToolbarPlugIn", &make<QRVVigilToolbarPlugIn>},
        {"Criterion", &make<Criterion>},
        {"SeparatorCriterion", &make<SeparatorCriterion>},
        {"TextFieldCriterion", &make<TextFieldCriterion>},
        {"PopUpCriterion", &make<PopUpCriterion>},
        {"SendEmailCriterion", &make<SendEmailCriterion>},
        {"SendSMSCriterion", &make<SendSMSCriterion>},
        {"RunScriptCriterion", &make<RunScriptCriterion>},
        {"PlaySoundCriterion", &make<PlaySoundCriterion>},
        {"SpeakTextCriterion", &make<SpeakTextCriterion>},
        {"SayCurrentConditionsCriterion", &make<SayCurrentConditionsCriterion>},
    };
    return classes;
}

}  // namespace vigil

extern "C" __attribute__((visibility("default"))) const vigil::ModuleTable* vigilPlugInModule() {
    static const vigil::ModuleTable table = {vigil::kContractMajor, vigil::kContractMinor, VIGIL_ABI,
                                             vigil::moduleClasses().data(), vigil::moduleClasses().size()};
    return &table;
}
