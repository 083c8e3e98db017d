#pragma once

#include <string>
#include <vector>

#include "host/services/automation/AutomationOptions.hpp"
#include "host/services/automation/DeliveryWire.hpp"
#include "host/services/automation/HandOver.hpp"
#include "host/services/automation/HelperCall.hpp"
#include "host/services/automation/MailMessage.hpp"

// One attempt to deliver one message. What waits here waits for a helper; the options are the caller's.

namespace vigil {

/// Waits on the calling thread until it is known what became of it, or `stop` is raised: then what had not
/// begun to be sent is deferred, and all else unknown.
DeliveryResult deliver(const MailHandOver& mail, const MailStamp& stamp, const AutomationOptions& options,
                       const StopSignal& stop);
DeliveryResult deliver(const SmsHandOver& sms, const AutomationOptions& options, const StopSignal& stop);

/// Bytes of a short message in UTF-8; more costs more parts than an alarm is worth.
inline constexpr std::size_t kLongestSms = 1000;
/// Digits of a number.
inline constexpr std::size_t kLongestNumber = 20;

/// What `gammu-smsd-inject` is called with; the text as a plain line.
std::vector<std::string> gammuWords(const SmsOptions& options, const std::string& number,
                                    const std::string& text);
/// What `mmcli` is called with to create a message. An error where the text holds both kinds of quotes, which
/// its form cannot express.
Result<std::vector<std::string>> mmcliWords(const SmsOptions& options, const std::string& number,
                                            const std::string& text);
/// The name of the message that it says to have created; empty where there is none.
std::string mmcliMessage(const std::string& output);

/// What the end of a program means for the message. `mayAskAgain`: exit status 75 is a refusal for now.
DeliveryResult judgeProgram(const Result<HelperAnswer>& answer, const std::string& program, bool mayAskAgain);

/// Runs a program by the helper.
Result<HelperAnswer> runProgram(std::vector<std::string> words, std::string input,
                                std::chrono::milliseconds time, std::chrono::milliseconds leftoverGrace,
                                const AutomationOptions& options, const StopSignal& stop);

}  // namespace vigil
