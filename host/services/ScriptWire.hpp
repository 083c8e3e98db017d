#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/services/ScriptRequest.hpp"

namespace vigil {

/// What the host asks `vigil-helper script` to do: message `J`, the first and only one. Its fields in this
/// order; a list is its count and its texts. The length of each text is a request's (`whyRefused`).
struct ScriptJob {
    std::string mark;  ///< names this run: its temporary folder, and VIGIL_RUN in the script's environment
    std::string source;
    std::vector<std::string> arguments;
    std::vector<std::string> environment;  ///< "NAME=value", all that the script gets
    std::uint32_t timeout = 0;             ///< milliseconds, from the start of the script
    std::uint32_t termGrace = 0;           ///< milliseconds between TERM and KILL
    std::uint32_t leftoverGrace = 0;       ///< milliseconds for what a script leaves running
};

/// The environment entry by which the processes of a run are known, also when their helper is gone.
inline constexpr const char* kRunMark = "VIGIL_RUN";

/// Both sides are of one build; a helper that was replaced under a running host refuses its job.
inline constexpr std::uint32_t kScriptWireVersion = 1;

std::string encodeScriptJob(const ScriptJob& job);
/// Message `S`, without fields: the script is about to be started. Sent before the first attempt, so that a
/// script of whose helper the host has heard no such word has certainly not run.
std::string encodeScriptStarts();
/// Message `R`, the last one: all of a result but its dates.
std::string encodeScriptResult(const ScriptResult& result);

// From a message without its length; nothing when it is of another kind, another version or damaged.
std::optional<ScriptJob> decodeScriptJob(std::string_view message);
bool isScriptStarts(std::string_view message);
std::optional<ScriptResult> decodeScriptResult(std::string_view message);

/// Where a run may keep its script, best first: a folder named for the mark in XDG_RUNTIME_DIR, TMPDIR or
/// /tmp. Both sides ask with one environment, so the host can clear up behind a helper that was killed.
std::vector<std::string> scriptFolders(const std::string& mark);

}  // namespace vigil
