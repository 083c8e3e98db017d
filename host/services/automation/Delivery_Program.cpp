#include "host/services/ScriptRunner.hpp"
#include "host/services/ScriptWire.hpp"
#include "host/services/automation/Delivery.hpp"
#include "host/services/automation/PlainText.hpp"

// Programs that take a message over.

namespace vigil {
namespace {

constexpr std::size_t kWordsShown = 2000;  // bytes of what a program wrote
constexpr int kAskAgain = 75;              // what programs for mail end with when they cannot take it now

/// What it wrote, in one line, for people.
std::string said(const ScriptResult& result) {
    const std::string text = plainLine(result.lastLines, kWordsShown);
    return text.empty() ? "" : ": " + text;
}

DeliveryResult judged(const ScriptResult& result, const std::string& program, bool mayAskAgain) {
    switch (result.outcome) {
        case ScriptResult::Succeeded:
            return {DeliveryResult::Accepted, 0, 0, program + " took it"};
        case ScriptResult::Failed:
            return {mayAskAgain && result.exitCode == kAskAgain ? DeliveryResult::Deferred
                                                                : DeliveryResult::Refused,
                    result.exitCode, 0,
                    program + " ended with exit status " + std::to_string(result.exitCode) + said(result)};
        case ScriptResult::NotStarted:
        case ScriptResult::Refused:
            return {DeliveryResult::Refused, 0, 0, result.failure};
        case ScriptResult::TimedOut:
            return {DeliveryResult::Unknown, 0, 0, program + " did not end in time and was ended"};
        case ScriptResult::Signalled:
            return {DeliveryResult::Unknown, 0, 0,
                    program + " was ended by signal " + std::to_string(result.signal) + said(result)};
        case ScriptResult::Interrupted:
            break;
    }
    return {DeliveryResult::Unknown, 0, 0, program + ": " + result.failure};
}

}  // namespace

Result<HelperAnswer> runProgram(std::vector<std::string> words, std::string input,
                                std::chrono::milliseconds time, std::chrono::milliseconds leftoverGrace,
                                const AutomationOptions& options, const StopSignal& stop) {
    ProgramJob job{.words = std::move(words),
                   .environment = {},
                   .input = std::move(input),
                   .timeout = static_cast<std::uint32_t>(time.count()),
                   .leftoverGrace = static_cast<std::uint32_t>(leftoverGrace.count())};
    for (const auto& [name, value] : inheritedEnvironment())
        job.environment.push_back(name + "=" + value);
    // beyond its time a program gets a moment to end, and what it leaves running another
    const auto whole = time + leftoverGrace + std::chrono::milliseconds(3000);
    return callHelper(options.helper, "program", encodeProgramJob(job), 'R', whole, stop);
}

DeliveryResult judgeProgram(const Result<HelperAnswer>& answer, const std::string& program,
                            bool mayAskAgain) {
    if (!answer) return {DeliveryResult::Deferred, 0, 0, answer.error().message};
    if (answer.value().message)
        if (const auto result = decodeScriptResult(*answer.value().message))
            return judged(*result, program, mayAskAgain);
    return {DeliveryResult::Unknown, 0, 0, program + ": " + answer.value().ending};
}

}  // namespace vigil
