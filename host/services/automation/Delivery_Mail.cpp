#include <algorithm>

#include "host/services/automation/Delivery.hpp"

namespace vigil {
namespace {

/// A mail program that goes on in the background gets so long to hand the mail to a queue.
constexpr std::chrono::milliseconds kBackground{20000};

std::uint32_t length(std::chrono::milliseconds time) {
    return static_cast<std::uint32_t>(std::clamp<long long>(time.count(), 1, 86400000));
}

DeliveryResult refused(std::string words) {
    return {DeliveryResult::Refused, 0, 0, std::move(words)};
}

/// The program for mail wants lines as the system has them.
std::string withSystemsLines(std::string text) {
    std::erase(text, '\r');
    return text;
}

DeliveryResult bySendmail(const MailHandOver& mail, const std::string& message,
                          const AutomationOptions& options, const StopSignal& stop) {
    const MailOptions& how = options.mail;
    // -i: a line with a full stop alone ends nothing; --: an address is no option
    const auto answer = runProgram({how.sendmail, "-i", "-f", how.from, "--", mail.recipient},
                                   withSystemsLines(message), how.wholeTime, kBackground, options, stop);
    return judgeProgram(answer, how.sendmail, /*mayAskAgain=*/true);
}

Result<std::string> password(const AutomationOptions& options) {
    const std::string& name = options.mail.secret;
    if (options.mail.user.empty()) return std::string();
    if (!options.secret) return Error{"there are no secrets here, so none called \"" + name + "\""};
    auto found = options.secret(name);
    if (!found) return found.error();
    if (!found.value()) return Error{"there is no secret called \"" + name + "\""};
    return *found.value();
}

DeliveryResult bySmtp(const MailHandOver& mail, std::string message, const AutomationOptions& options,
                      const StopSignal& stop) {
    const MailOptions& how = options.mail;
    auto secret = password(options);
    if (!secret) return refused(secret.error().message);
    const SmtpJob job = {.host = how.host,
                         .port = static_cast<std::uint32_t>(how.port),
                         .security = static_cast<SmtpJob::Security>(how.security),
                         .caFile = how.caFile,
                         .user = how.user,
                         .secret = std::move(secret).value(),
                         .from = how.from,
                         .recipient = mail.recipient,
                         .message = std::move(message),
                         .connectTime = length(how.connectTime),
                         .wholeTime = length(how.wholeTime)};
    const auto answer = callHelper(options.helper, "mail", encodeSmtpJob(job), 'D', how.wholeTime, stop);
    if (!answer) return {DeliveryResult::Deferred, 0, 0, answer.error().message};
    if (answer.value().message)
        if (auto result = decodeDeliveryResult(*answer.value().message)) return *result;
    return {DeliveryResult::Unknown, 0, 0, answer.value().ending};
}

}  // namespace

DeliveryResult deliver(const MailHandOver& mail, const MailStamp& stamp, const AutomationOptions& options,
                       const StopSignal& stop) {
    if (const auto why = whyNoMail(options.mail)) return refused(*why);
    std::string message = composeMail(mail, stamp, options.mail.from);
    if (options.mail.method == MailOptions::Sendmail) return bySendmail(mail, message, options, stop);
    return bySmtp(mail, std::move(message), options, stop);
}

}  // namespace vigil
