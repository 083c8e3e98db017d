#include "host/helper/ScriptCommand.hpp"

#include <cerrno>
#include <optional>

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>

#include "host/helper/ScriptFile.hpp"
#include "host/helper/ScriptProcess.hpp"
#include "host/helper/ScriptWatch.hpp"
#include "host/services/HelperWire.hpp"
#include "host/services/ScriptWire.hpp"
#include "host/services/UniqueFd.hpp"

namespace vigil {
namespace {

std::optional<std::string> receiveMessage(int socket) {
    WireBuffer buffer;
    while (!buffer.broken()) {
        if (std::optional<std::string> message = buffer.next()) return message;
        char bytes[64 << 10];
        const ssize_t count = ::recv(socket, bytes, sizeof bytes, 0);
        if (count > 0)
            buffer.append({bytes, static_cast<std::size_t>(count)});
        else if (count == 0 || errno != EINTR)
            break;
    }
    return std::nullopt;
}

bool sendAll(int socket, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count > 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EINTR)
            return false;
    }
    return true;
}

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

// A script may send its parent any signal, and a terminal or a service manager sends them to all alike: none
// ends the helper, so that it can clear up. Only what a fault of the helper itself raises stays as it is.
void blockSignals() {
    sigset_t all;
    sigfillset(&all);
    for (int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS})
        sigdelset(&all, fault);
    ::sigprocmask(SIG_SETMASK, &all, nullptr);
    // ignored, as it may have been inherited, it would take away what is to be waited for
    ::signal(SIGCHLD, SIG_DFL);
}

// Standard output and error are there, so no descriptor of ours is taken for one of them.
void fillStandardDescriptors() {
    int fd = 0;
    while (fd >= 0 && fd <= 2)
        fd = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    if (fd > 2) ::close(fd);
}

}  // namespace

int runScriptCommand(int socket) {
    blockSignals();
    fillStandardDescriptors();
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
