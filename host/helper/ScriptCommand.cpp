#include "host/helper/ScriptCommand.hpp"

#include <optional>

#include <sys/prctl.h>

#include "host/helper/HostSocket.hpp"
#include "host/helper/ScriptFile.hpp"
#include "host/helper/ScriptProcess.hpp"
#include "host/helper/ScriptWatch.hpp"
#include "host/services/ScriptWire.hpp"

namespace vigil {
namespace {

ScriptResult notStarted(const std::string& why) {
    ScriptResult result;
    result.outcome = ScriptResult::NotStarted;
    result.failure = why;
    return result;
}

// The temporary folder is gone again when this returns.
ScriptResult runJob(const ScriptJob& job, int socket) {
    Result<ScriptFile> file = ScriptFile::write(scriptFolders(job.mark), job.source);
    if (!file) return notStarted(file.error().message);
    if (!sendAll(socket, encodeScriptStarts())) return notStarted("the host is gone");
    Result<ScriptProcess> process = startScript(job, file.value().path());
    if (!process) return notStarted(process.error().message);
    return ScriptWatch(job, std::move(process).value(), socket).run();
}

}  // namespace

int runScriptCommand(int socket) {
    guardProcess();
    const std::optional<std::string> message = receiveMessage(socket);
    if (!message) return 3;
    const std::optional<ScriptJob> job = decodeScriptJob(*message);
    ScriptResult result;
    if (!job)
        result = notStarted("the helper does not understand the host; both must be of one version");
    else if (::prctl(PR_SET_CHILD_SUBREAPER, 1) != 0)
        result = notStarted("this Linux does not let the helper watch what a script starts");
    else
        result = runJob(*job, socket);
    if (!sendAll(socket, encodeScriptResult(result))) return 3;
    return job ? 0 : 2;
}

}  // namespace vigil
