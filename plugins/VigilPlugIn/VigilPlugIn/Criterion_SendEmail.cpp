#include "plugins/VigilPlugIn/VigilPlugIn/ActionTexts.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Actions.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/EmailAddress.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/MailScripts.hpp"

namespace vigil {
namespace {

// A placeholder that is meant: the message tells neither readings nor cause.
constexpr std::string_view kContent = "???";
constexpr std::string_view kSender = "Vigil";

}  // namespace

bool SendEmailCriterion::validateEmail(std::string_view address) {
    return matchesEmailAddressPattern(address);
}

void SendEmailCriterion::performActionWithDisplayValues(const DisplayValueList& displayValues) {
    const auto address = stringValue(displayValues.at(1));
    HostWorld* host = world();
    if (!address || !validateEmail(*address) || !host) return;
    // Neither outcome counts: the message is sent whatever became of the viewer, and nobody is told of
    // either.
    static_cast<void>(host->automationScripts().run(std::string(kMailViewerScript)));
    const std::string subject = filled("Vigil for %@", {siteNameText(agent())});
    std::string message = filled(kMailMessageFormat, {subject, kContent, kSender, *address});
    message += kMailClosing;
    static_cast<void>(host->automationScripts().run(message));
}

}  // namespace vigil
