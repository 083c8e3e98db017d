#include "host/helper/ProgramCommand.hpp"

#include <cerrno>
#include <cstring>

#include <sys/mman.h>
#include <sys/prctl.h>
#include <unistd.h>

#include "host/helper/HostSocket.hpp"
#include "host/helper/ScriptProcess.hpp"
#include "host/helper/ScriptWatch.hpp"
#include "host/services/automation/DeliveryWire.hpp"

namespace vigil {
namespace {

constexpr std::uint32_t kTermGrace = 500;  // milliseconds between TERM and KILL

ScriptResult notStarted(const std::string& why) {
    ScriptResult result;
    result.outcome = ScriptResult::NotStarted;
    result.failure = why;
    return result;
}

// A file in memory: nobody has to feed it to a program that reads slowly or not at all.
Result<UniqueFd> inputOf(std::string_view text) {
    UniqueFd file(::memfd_create("input", MFD_CLOEXEC));
    while (file && !text.empty()) {
        const ssize_t count = ::write(file.get(), text.data(), text.size());
        if (count > 0)
            text.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EINTR)
            file.reset();
    }
    if (!file || ::lseek(file.get(), 0, SEEK_SET) != 0)
        return Error{std::string("its input cannot be kept: ") + std::strerror(errno)};
    return file;
}

ScriptResult runJob(const ProgramJob& job, int socket) {
    auto input = inputOf(job.input);
    if (!input) return notStarted(input.error().message);
    ScriptJob watched;
    watched.timeout = job.timeout;
    watched.termGrace = kTermGrace;
    watched.leftoverGrace = job.leftoverGrace;
    auto process = startProgram(job.words, job.environment, input.value());
    if (!process) return notStarted(process.error().message);
    return ScriptWatch(watched, std::move(process).value(), socket).run();
}

}  // namespace

int runProgramCommand(int socket) {
    guardProcess();
    const auto message = receiveMessage(socket);
    if (!message) return 3;
    const auto job = decodeProgramJob(*message);
    ScriptResult result;
    if (!job)
        result = notStarted("the helper does not understand the host; both must be of one version");
    else if (::prctl(PR_SET_CHILD_SUBREAPER, 1) != 0)
        result = notStarted("this Linux does not let the helper watch what a program starts");
    else
        result = runJob(*job, socket);
    if (!sendAll(socket, encodeScriptResult(result))) return 3;
    return job ? 0 : 2;
}

}  // namespace vigil
