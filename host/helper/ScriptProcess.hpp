#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

#include "host/services/ScriptWire.hpp"
#include "host/services/UniqueFd.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// A script that has been started. It leads a session and a process group of its own, reads nothing, and dies
/// when the thread that started it does.
struct ScriptProcess {
    pid_t process = -1;
    UniqueFd output;  ///< what it writes to both outputs; does not block
};

/// Runs the file with the program that its first line names, as Linux does, or with /bin/sh. Where the file
/// cannot be executed as it stands (a file system without execution, a file that another process has open)
/// the program is called as Linux would have called it. Works in the home folder. Fails with words.
Result<ScriptProcess> startScript(const ScriptJob& job, const std::string& path);

/// Runs a program in the same way, with what `input` holds from its beginning as its standard input. The
/// first word is a path, or a name that is looked up in the environment's PATH. Fails with words.
Result<ScriptProcess> startProgram(const std::vector<std::string>& words,
                                   const std::vector<std::string>& environment, const UniqueFd& input);

}  // namespace vigil
