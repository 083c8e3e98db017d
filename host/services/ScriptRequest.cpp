#include "host/services/ScriptRequest.hpp"

#include <cstdio>
#include <cstring>

namespace vigil {
namespace {

std::string seconds(double length) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f s", length);
    return text;
}

// "3 (Quit)"; the number alone where the system has no word for it.
std::string signalText(int signal) {
    std::string text = std::to_string(signal);
    if (const char* words = sigdescr_np(signal)) text.append(" (").append(words).append(")");
    return text;
}

bool hasNul(const std::string& text) {
    return text.find('\0') != std::string::npos;
}

}  // namespace

const char* scriptOutcomeName(ScriptResult::Outcome outcome) {
    switch (outcome) {
        case ScriptResult::Succeeded:
            return "succeeded";
        case ScriptResult::Failed:
            return "failed";
        case ScriptResult::Signalled:
            return "signalled";
        case ScriptResult::TimedOut:
            return "timed out";
        case ScriptResult::NotStarted:
            return "not started";
        case ScriptResult::Interrupted:
            return "interrupted";
        case ScriptResult::Refused:
            return "refused";
    }
    return "";
}

std::string ScriptResult::sentence() const {
    const std::string after = " after " + seconds(ended.secondsSince(started));
    std::string text;
    switch (outcome) {
        case Succeeded:
            text = "The script succeeded" + after;
            break;
        case Failed:
            text = "The script failed with exit code " + std::to_string(exitCode) + after;
            break;
        case Signalled:
            text = "The script was ended by signal " + signalText(signal) + after;
            break;
        case TimedOut:
            text = "The script was ended because its time was over" + after;
            break;
        case NotStarted:
            text = "The script was not started";
            break;
        case Interrupted:
            text = "The script was interrupted";
            break;
        case Refused:
            text = "The script was refused";
            break;
    }
    if (!failure.empty()) text.append(": ").append(failure);
    return text.append(".");
}

std::string whyRefused(const ScriptRequest& request) {
    if (request.source.size() > kScriptSource) return "the script is longer than 1 MiB";
    if (request.timeoutSeconds < 1) return "a time-out of less than a second leaves no time to run";
    if (request.timeoutSeconds > kScriptTimeoutSeconds) return "the time-out is longer than a day";
    if (request.arguments.size() > kScriptArguments) return "there are more than 1000 arguments";
    std::size_t size = 0;
    for (const std::string& argument : request.arguments) {
        if (hasNul(argument)) return "an argument holds a NUL character";
        if (argument.size() > kScriptArgument) return "an argument is longer than 64 KiB";
        size += argument.size() + 1;
    }
    for (const auto& [name, value] : request.environment) {
        if (name.empty() || hasNul(name) || name.find('=') != std::string::npos)
            return "an environment entry has no usable name";
        if (hasNul(value)) return "the environment entry " + name + " holds a NUL character";
        if (name.size() + value.size() > kScriptArgument) return "an environment entry is longer than 64 KiB";
        size += name.size() + value.size() + 2;
    }
    if (size > kScriptWords) return "arguments and environment are longer than 512 KiB together";
    return {};
}

}  // namespace vigil
