#include "host/settings/SettingsRules.hpp"

#include <algorithm>

#include "host/words/Addresses.hpp"

namespace vigil {
namespace {

bool isMistaken(const SettingsReading& reading, const std::string& path) {
    return std::any_of(reading.problems.begin(), reading.problems.end(),
                       [&](const SettingsProblem& problem) { return problem.says.starts_with(path + ":"); });
}

/// Told where `path` stands. What is there but mistaken has been told already.
void need(SettingsReading& reading, const char* path, bool needed, const std::string& missing,
          const char* why) {
    if (!needed || isMistaken(reading, missing)) return;
    const auto place = reading.places.find(path);
    reading.problems.push_back({place == reading.places.end() ? SettingPlace{} : place->second,
                                std::string(path) + ": " + why + " needs " + missing});
}

}  // namespace

void checkTogether(SettingsReading& reading) {
    const MailSettings& mail = reading.settings.mail;
    const SmsSettings& sms = reading.settings.sms;
    const bool smtp = mail.method == MailMethod::Smtp;
    const bool sends = mail.method != MailMethod::None;
    need(reading, "mail.method", smtp && mail.host.empty(), "mail.host", "\"smtp\"");
    need(reading, "mail.method", sends && mail.from.empty(), "mail.from", smtp ? "\"smtp\"" : "\"sendmail\"");
    need(reading, "mail.security",
         smtp && !mail.user.empty() && mail.security == MailSecurity::None && !isThisMachine(mail.host),
         "\"starttls\" or \"tls\"", "a login at another machine");
    need(reading, "mail.user", !mail.user.empty() && mail.secret.empty(), "mail.secret", "a login");
    need(reading, "mail.secret", mail.user.empty() && !mail.secret.empty(), "mail.user", "a login");
    need(reading, "sms.method", sms.method == SmsMethod::Command && sms.command.empty(), "sms.command",
         "\"command\"");
}

}  // namespace vigil
