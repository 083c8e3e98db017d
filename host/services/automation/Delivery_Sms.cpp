#include <algorithm>

#include "host/services/ScriptWire.hpp"
#include "host/services/automation/Delivery.hpp"
#include "host/services/automation/PlainText.hpp"

namespace vigil {
namespace {

constexpr std::chrono::milliseconds kLeftovers{200};
constexpr const char* kMmcliPath = "/org/freedesktop/ModemManager1/SMS/";

DeliveryResult refused(std::string words) {
    return {DeliveryResult::Refused, 0, 0, std::move(words)};
}

bool isPlainAscii(const std::string& text) {
    // the alphabet of short messages lacks one character of ASCII, the grave accent
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~' && c != '`'; });
}

std::string programOf(const SmsOptions& options, const char* usual) {
    return options.program.empty() ? usual : options.program;
}

DeliveryResult byMmcli(const std::string& number, const std::string& text, const AutomationOptions& options,
                       const StopSignal& stop) {
    const SmsOptions& how = options.sms;
    const std::string program = programOf(how, "mmcli");
    auto words = mmcliWords(how, number, text);
    if (!words) return refused(words.error().message);
    const auto created = runProgram(std::move(words).value(), {}, how.time, kLeftovers, options, stop);
    DeliveryResult result = judgeProgram(created, program, /*mayAskAgain=*/false);
    if (result.outcome != DeliveryResult::Accepted) {
        // A message that has only been created, or not even that, is not sent.
        if (result.outcome == DeliveryResult::Unknown)
            result.outcome = stop.raised() ? DeliveryResult::Deferred : DeliveryResult::Refused;
        return result;
    }
    const auto said = decodeScriptResult(*created.value().message);
    const std::string message = said ? mmcliMessage(said->lastLines) : "";
    if (message.empty()) return refused(program + " did not say which message it created");
    return judgeProgram(
        runProgram({program, "-s", message, "--send"}, {}, how.time, kLeftovers, options, stop), program,
        /*mayAskAgain=*/false);
}

DeliveryResult byCommand(const std::string& number, const std::string& text, const AutomationOptions& options,
                         const StopSignal& stop) {
    std::vector<std::string> words = options.sms.command;
    words.push_back(number);
    words.push_back(text);
    return judgeProgram(runProgram(std::move(words), text, options.sms.time, kLeftovers, options, stop),
                        options.sms.command[0], /*mayAskAgain=*/true);
}

}  // namespace

std::vector<std::string> gammuWords(const SmsOptions& options, const std::string& number,
                                    const std::string& text) {
    std::vector<std::string> words = {programOf(options, "gammu-smsd-inject")};
    if (!options.config.empty()) words.insert(words.end(), {"-c", options.config});
    words.insert(words.end(), {"TEXT", number, "-len", std::to_string(kLongestSms)});
    if (!isPlainAscii(text)) words.push_back("-unicode");
    // the one that does not depend on the locale
    words.insert(words.end(), {"-textutf8", text});
    return words;
}

Result<std::vector<std::string>> mmcliWords(const SmsOptions& options, const std::string& number,
                                            const std::string& text) {
    const char quote = text.find('\'') == std::string::npos ? '\'' : '"';
    if (text.find(quote) != std::string::npos)
        return Error{"mmcli cannot be given a text with both kinds of quotes"};
    std::string message = "text=";
    ((message += quote) += text) += quote;
    return std::vector<std::string>{programOf(options, "mmcli"), "-m", "any",
                                    "--messaging-create-sms=" + message + ",number='" + number + "'"};
}

std::string mmcliMessage(const std::string& output) {
    const std::size_t begin = output.find(kMmcliPath);
    if (begin == std::string::npos) return {};
    const std::size_t digits = begin + std::string_view(kMmcliPath).size();
    const std::size_t end = std::min(output.find_first_not_of("0123456789", digits), output.size());
    return end == digits ? std::string() : output.substr(begin, end - begin);
}

DeliveryResult deliver(const SmsHandOver& sms, const AutomationOptions& options, const StopSignal& stop) {
    if (const auto why = whyNoSms(options.sms)) return refused(*why);
    if (sms.number.starts_with('-')) return refused("no telephone number begins with a minus sign");
    const std::string number = sms.number.starts_with('+') ? sms.number : "+" + sms.number;
    if (number.size() - 1 > kLongestNumber) return refused("no telephone number has more than 20 digits");
    const std::string text = plainLine(sms.text);
    if (text.size() > kLongestSms) return refused("the text is longer than 1000 bytes");
    switch (options.sms.method) {
        case SmsOptions::Mmcli:
            return byMmcli(number, text, options, stop);
        case SmsOptions::Command:
            return byCommand(number, text, options, stop);
        case SmsOptions::Gammu:
        case SmsOptions::None:
            break;
    }
    return judgeProgram(
        runProgram(gammuWords(options.sms, number, text), {}, options.sms.time, kLeftovers, options, stop),
        programOf(options.sms, "gammu-smsd-inject"), /*mayAskAgain=*/false);
}

}  // namespace vigil
