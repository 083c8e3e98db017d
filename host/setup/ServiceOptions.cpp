#include "host/setup/ServiceOptions.hpp"

#include "host/run/Secrets.hpp"
#include "host/services/ScriptRunner.hpp"
#include "host/services/SystemClock.hpp"

namespace vigil {
namespace {

MailOptions::Method methodOf(MailMethod method) {
    switch (method) {
        case MailMethod::Smtp:
            return MailOptions::Smtp;
        case MailMethod::Sendmail:
            return MailOptions::Sendmail;
        case MailMethod::None:
            break;
    }
    return MailOptions::None;
}

MailOptions::Security securityOf(MailSecurity security) {
    switch (security) {
        case MailSecurity::None:
            return MailOptions::Plain;
        case MailSecurity::Tls:
            return MailOptions::Tls;
        case MailSecurity::StartTls:
            break;
    }
    return MailOptions::StartTls;
}

SmsOptions::Method methodOf(SmsMethod method) {
    switch (method) {
        case SmsMethod::Gammu:
            return SmsOptions::Gammu;
        case SmsMethod::Mmcli:
            return SmsOptions::Mmcli;
        case SmsMethod::Command:
            return SmsOptions::Command;
        case SmsMethod::None:
            break;
    }
    return SmsOptions::None;
}

MailOptions optionsOf(const MailSettings& mail) {
    return {.method = methodOf(mail.method),
            .host = mail.host,
            .port = mailPort(mail),
            .security = securityOf(mail.security),
            .user = mail.user,
            .secret = mail.secret,
            .from = mail.from,
            .caFile = mail.caFile,
            .sendmail = mail.sendmail};
}

SmsOptions optionsOf(const SmsSettings& sms) {
    return {
        .method = methodOf(sms.method), .command = sms.command, .program = sms.program, .config = sms.config};
}

}  // namespace

Player::Options playerOptions(const Settings& settings, const std::string& programFolder) {
    const SpeechSettings& speech = settings.speech;
    return {.helper = helperPath(programFolder),
            .setup = {.device = settings.sound.device,
                      .program = speech.program,
                      .voice = speech.voice,
                      .language = speech.language,
                      .rate = static_cast<std::uint32_t>(speech.rate)}};
}

AutomationOptions automationOptions(const Settings& settings, const std::string& programFolder) {
    return {.mail = optionsOf(settings.mail),
            .sms = optionsOf(settings.sms),
            .helper = helperPath(programFolder),
            .secret = [](const std::string& name) { return Secrets(Secrets::defaultFile()).named(name); },
            .clock = systemNow};
}

}  // namespace vigil
