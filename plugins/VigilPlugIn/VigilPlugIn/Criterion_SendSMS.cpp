#include <algorithm>

#include "plugins/VigilPlugIn/VigilPlugIn/ActionTexts.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Actions.hpp"

namespace vigil {
namespace {

constexpr int kLogLevel = 3;
constexpr std::string_view kScriptFormat =
    "tell application \"Messages\"\n"
    "         send \"%@\" to buddy \"+%@\" of service \"SMS\"\n"
    "         end tell";
// Meant as it stands: the message tells neither readings nor cause.
constexpr std::string_view kPlaceholderText = "?????";

/// An optional sign and ASCII digits, at least one.
bool isNumber(std::string_view text) {
    if (text.starts_with('+') || text.starts_with('-')) text.remove_prefix(1);
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

void SendSMSCriterion::performActionWithDisplayValues(const DisplayValueList& displayValues) {
    const auto number = stringValue(displayValues.at(1));
    HostWorld* host = world();
    if (!host) return;
    if (!number || !isNumber(*number)) {
        QRVLog& log = QRVLog::sharedLog(*host);
        if (log.takesLevel(kLogLevel))
            log.logLevel(kLogLevel, filled("send sms number is not all numbers:%@ #%@",
                                           {number.value_or(kAbsentText), className()}));
        return;
    }
    const std::string message = filled("Vigil for %@. ", {siteNameText(agent())}).append(kPlaceholderText);
    // The outcome does not count, and nobody is told of it.
    static_cast<void>(host->automationScripts().run(filled(kScriptFormat, {message, *number})));
}

}  // namespace vigil
