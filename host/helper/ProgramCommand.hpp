#pragma once

namespace vigil {

/// `vigil-helper program`: takes one job from the socket, runs the program and answers as for a script
/// (`DeliveryWire.hpp`). Returns the exit status of the process: 0 when the host has its answer, 2 when there
/// was no job to be understood, 3 when the host was gone. Makes the process a subreaper.
int runProgramCommand(int socket);

}  // namespace vigil
