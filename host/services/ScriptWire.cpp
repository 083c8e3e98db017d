#include "host/services/ScriptWire.hpp"

#include <cstdlib>

#include "host/services/HelperWire.hpp"

namespace vigil {
namespace {

constexpr std::size_t kListLength = 10000;  // of any list of a job; more is a damaged one

void putList(WireWriter& to, const std::vector<std::string>& list) {
    to.number(static_cast<std::uint32_t>(list.size()));
    for (const std::string& text : list)
        to.text(text);
}

// A count that the bytes do not bear out ends the loop with `ok` false.
std::vector<std::string> takeList(WireReader& from) {
    const std::uint32_t count = from.number();
    std::vector<std::string> list;
    for (std::uint32_t i = 0; i < count && i < kListLength && from.ok(); ++i)
        list.push_back(from.text());
    return list;
}

bool isOutcome(std::uint32_t value) {
    return value <= static_cast<std::uint32_t>(ScriptResult::Refused);
}

}  // namespace

std::string encodeScriptJob(const ScriptJob& job) {
    WireWriter to('J');
    to.number(kScriptWireVersion).text(job.mark).text(job.source);
    putList(to, job.arguments);
    putList(to, job.environment);
    to.number(job.timeout).number(job.termGrace).number(job.leftoverGrace);
    return to.take();
}

std::optional<ScriptJob> decodeScriptJob(std::string_view message) {
    WireReader from(message);
    if (from.kind() != 'J' || from.number() != kScriptWireVersion) return std::nullopt;
    ScriptJob job;
    job.mark = from.text();
    job.source = from.text();
    job.arguments = takeList(from);
    job.environment = takeList(from);
    job.timeout = from.number();
    job.termGrace = from.number();
    job.leftoverGrace = from.number();
    if (!from.complete()) return std::nullopt;
    return job;
}

std::string encodeScriptStarts() {
    return WireWriter('S').take();
}

bool isScriptStarts(std::string_view message) {
    return message == "S";
}

std::string encodeScriptResult(const ScriptResult& result) {
    return WireWriter('R')
        .number(static_cast<std::uint32_t>(result.outcome))
        .number(static_cast<std::uint32_t>(result.exitCode))
        .number(static_cast<std::uint32_t>(result.signal))
        .text(result.lastLines)
        .longNumber(result.outputBytes)
        .number(result.truncated ? 1 : 0)
        .text(result.failure)
        .take();
}

std::optional<ScriptResult> decodeScriptResult(std::string_view message) {
    WireReader from(message);
    const std::uint32_t outcome = from.number();
    if (from.kind() != 'R' || !isOutcome(outcome)) return std::nullopt;
    ScriptResult result;
    result.outcome = static_cast<ScriptResult::Outcome>(outcome);
    result.exitCode = static_cast<int>(from.number());
    result.signal = static_cast<int>(from.number());
    result.lastLines = from.text();
    result.outputBytes = from.longNumber();
    result.truncated = from.number() != 0;
    result.failure = from.text();
    if (!from.complete()) return std::nullopt;
    return result;
}

std::vector<std::string> scriptFolders(const std::string& mark) {
    std::vector<std::string> folders;
    for (const char* name : {"XDG_RUNTIME_DIR", "TMPDIR"}) {
        const char* base = std::getenv(name);
        // a relative path would mean another folder for each side
        if (base && *base == '/') folders.push_back(std::string(base) + "/vigil-script-" + mark);
    }
    folders.push_back("/tmp/vigil-script-" + mark);
    return folders;
}

}  // namespace vigil
