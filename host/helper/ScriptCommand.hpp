#pragma once

namespace vigil {

/// `vigil-helper script`: takes one job from the socket, runs it and answers (`ScriptWire.hpp`). Returns the
/// exit status of the process: 0 when the host has its answer, 2 when there was no job to be understood, 3
/// when the host was gone. Makes the process a subreaper and blocks its signals.
int runScriptCommand(int socket);

}  // namespace vigil
