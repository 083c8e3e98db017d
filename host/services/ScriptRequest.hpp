#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/Date.hpp"

namespace vigil {

/// A script to be run for a station.
struct ScriptRequest {
    std::string source;                  ///< the text; without a `#!` line it is run by /bin/sh
    std::vector<std::string> arguments;  ///< as they are, empty ones included; no NUL within
    /// Added to what every script inherits (`inheritedEnvironment`); of equal names the last counts.
    std::vector<std::pair<std::string, std::string>> environment;
    int timeoutSeconds = 60;  ///< from the start of the script, at least 1
    std::string station;      ///< scripts of one station run one after another
    std::string monitor;      ///< for whom it runs, as people know it
};

/// What became of a request. Every request gets exactly one.
struct ScriptResult {
    enum Outcome {
        Succeeded,    ///< ended with exit code 0
        Failed,       ///< ended with another exit code
        Signalled,    ///< ended by a signal that this host did not send
        TimedOut,     ///< ended by this host, its time was over
        NotStarted,   ///< there was nothing to run it with or no place for it; `failure` says what
        Interrupted,  ///< begun or waiting when the host stopped, or its helper died; `failure` says which
        Refused,      ///< never accepted: the queue was full or the request is none; `failure` says why
    };

    Date queued;
    Date started;  ///< of a script that never started, the same as `ended`
    Date ended;
    Outcome outcome = NotStarted;
    int exitCode = 0;               ///< of Succeeded and Failed
    int signal = 0;                 ///< of Signalled
    std::string lastLines;          ///< the end of what it wrote to both outputs, UTF-8, at most kLastLines
    std::uint64_t outputBytes = 0;  ///< how much it wrote in all
    bool truncated = false;         ///< whether `lastLines` is less than all
    std::string failure;            ///< in words, empty where the outcome says it all

    /// One sentence for people: "The script failed with exit code 3 after 0.2 s."
    std::string sentence() const;

    friend bool operator==(const ScriptResult&, const ScriptResult&) = default;
};

/// The printed name of an outcome: "succeeded", "failed", "signalled", "timed out", "not started",
/// "interrupted", "refused".
const char* scriptOutcomeName(ScriptResult::Outcome outcome);

// What a request and a result may hold. They stop one station from filling the memory of the host.
inline constexpr std::size_t kScriptSource = 1 << 20;     ///< bytes of text
inline constexpr std::size_t kScriptArguments = 1000;     ///< how many
inline constexpr std::size_t kScriptArgument = 64 << 10;  ///< bytes of one argument or entry (Linux: 128 KiB)
inline constexpr std::size_t kScriptWords = 512 << 10;    ///< bytes of arguments and environment together
inline constexpr int kScriptTimeoutSeconds = 24 * 60 * 60;  ///< the longest time-out
inline constexpr std::size_t kLastLines = 4 << 10;          ///< bytes of output that a result keeps

/// Why a request cannot be run as it stands, or an empty text.
std::string whyRefused(const ScriptRequest& request);

}  // namespace vigil
