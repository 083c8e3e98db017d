#include "host/services/automation/AutomationOptions.hpp"

#include "host/words/Addresses.hpp"

namespace vigil {
namespace {

std::optional<std::string> whyNoSmtp(const MailOptions& options) {
    if (options.host.empty()) return "no mail server is set";
    if (options.port < 1 || options.port > 65535) return "the mail server's port is none";
    if (options.user.empty()) return std::nullopt;
    if (options.secret.empty()) return "the login at the mail server has no secret";
    if (options.security == MailOptions::Plain && !isThisMachine(options.host))
        return "a login at the mail server needs STARTTLS or TLS";
    return std::nullopt;
}

}  // namespace

std::optional<std::string> whyNoMail(const MailOptions& options) {
    if (options.method == MailOptions::None) return "no mail is set up";
    if (!isMailAddress(options.from)) return "mail is set up without a valid address to send from";
    if (options.method == MailOptions::Smtp) return whyNoSmtp(options);
    if (options.sendmail.empty()) return "mail is set up without a program that sends";
    return std::nullopt;
}

std::optional<std::string> whyNoSms(const SmsOptions& options) {
    if (options.method == SmsOptions::None) return "no short messages are set up";
    if (options.method == SmsOptions::Command && (options.command.empty() || options.command[0].empty()))
        return "short messages are set up without a command";
    return std::nullopt;
}

}  // namespace vigil
