#include <algorithm>
#include <chrono>
#include <optional>

#include <fmt/format.h>
#include <unistd.h>

#include "host/command/TestServices.hpp"
#include "host/services/SystemClock.hpp"
#include "host/services/automation/Delivery.hpp"
#include "host/settings/SettingsFile.hpp"
#include "host/settings/SettingsTable.hpp"
#include "host/setup/ServiceOptions.hpp"
#include "host/words/Addresses.hpp"

// Mail and short messages.

namespace vigil {
namespace {

std::string machineName() {
    char name[256] = {};
    return gethostname(name, sizeof name - 1) == 0 ? name : "a machine without a name";
}

/// "smtp", as it stands in the file.
std::string setText(const Settings& settings, std::string_view section, std::string_view key) {
    for (const SettingRow& row : settingsTable())
        if (row.section == section && row.key == key) return std::get<std::string>(row.get(settings));
    return {};
}

std::string mailWay(const Settings& settings) {
    const MailSettings& mail = settings.mail;
    if (mail.method == MailMethod::Sendmail) return mail.sendmail;
    return fmt::format("smtp, {} port {}, security {}, {}", mail.host, mailPort(mail),
                       setText(settings, "mail", "security"),
                       mail.user.empty() ? "without a login" : "as " + mail.user);
}

std::string smsWay(const Settings& settings) {
    const SmsSettings& sms = settings.sms;
    if (sms.method == SmsMethod::Command) return "command, " + sms.command.front();
    return setText(settings, "sms", "method") + (sms.program.empty() ? "" : ", " + sms.program);
}

std::string answerOf(const DeliveryResult& result) {
    // Where something else went wrong, an earlier reply, which may have been a good one, explains nothing.
    const bool explains = result.response >= 400 || result.outcome == DeliveryResult::Accepted;
    const std::string number =
        result.response == 0 || !explains ? std::string() : std::to_string(result.response);
    const bool told = result.words.find(number) != std::string::npos;
    return told ? result.words : number + " " + result.words;
}

/// Accepted is all that can be known: what comes behind is the server's.
std::string sentenceOf(DeliveryResult::Outcome outcome) {
    switch (outcome) {
        case DeliveryResult::Accepted:
            return "It was sent: the next one on the way has taken it over.";
        case DeliveryResult::Deferred:
            return "It was not sent. A monitor's message would be tried again.";
        case DeliveryResult::Refused:
            return "It was not sent, and trying again would not help.";
        case DeliveryResult::Unknown:
            break;
    }
    return "It may have been sent: nobody has said so.";
}

TestReport notSetUp(const std::string& why, const char* section) {
    return {.says =
                fmt::format("Nothing was sent: {}; see [{}] in {}.", why, section, defaultSettingsFile())};
}

template <class Attempt>
TestReport attempted(std::vector<std::pair<std::string, std::string>> facts, Attempt attempt) {
    const auto began = std::chrono::steady_clock::now();
    const DeliveryResult result = attempt();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - began;
    if (const std::string answer = answerOf(result); !answer.empty()) facts.emplace_back("answer", answer);
    return {.status = result.outcome == DeliveryResult::Accepted ? ExitStatus::Yes : ExitStatus::No,
            .says = sentenceOf(result.outcome),
            .facts = std::move(facts),
            .seconds = took.count()};
}

bool isNumber(const std::string& text) {
    const std::size_t sign = text.starts_with('+') ? 1 : 0;
    return text.size() > sign && std::all_of(text.begin() + static_cast<std::ptrdiff_t>(sign), text.end(),
                                             [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

TestReport testMail(const Settings& settings, const std::string& programFolder, const std::string& address) {
    if (!isMailAddress(address))
        return {.status = ExitStatus::BadInput,
                .says = settingText(address) + " is no e-mail address; expected one as in ann@example.org"};
    const AutomationOptions options = automationOptions(settings, programFolder);
    if (const auto why = whyNoMail(options.mail)) return notSetUp(*why, "mail");
    const Date now = systemNow();
    const MailHandOver mail{.sender = "Vigil",
                            .recipient = address,
                            .subject = "Vigil test",
                            .content = "`vigil test mail` on " + machineName() + " sent this.\n"};
    const MailStamp stamp{.when = now,
                          .unique = fmt::format("test.{:.0f}.{}", now.secondsSince(Date()) * 1e3, getpid())};
    return attempted({{"to", address}, {"from", options.mail.from}, {"by", mailWay(settings)}}, [&] {
        const StopSignal never;
        return deliver(mail, stamp, options, never);
    });
}

TestReport testSms(const Settings& settings, const std::string& programFolder, const std::string& number) {
    if (!isNumber(number))
        return {
            .status = ExitStatus::BadInput,
            .says = settingText(number) + " is no telephone number; expected digits as in +4915100000000"};
    const AutomationOptions options = automationOptions(settings, programFolder);
    if (const auto why = whyNoSms(options.sms)) return notSetUp(*why, "sms");
    const SmsHandOver sms{.number = number, .text = "Vigil test from " + machineName()};
    return attempted({{"to", number}, {"by", smsWay(settings)}}, [&] {
        const StopSignal never;
        return deliver(sms, options, never);
    });
}

}  // namespace vigil
