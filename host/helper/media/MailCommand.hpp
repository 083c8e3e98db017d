#pragma once

namespace vigil {

/// `vigil-helper mail`: takes one mail from the socket, hands it to its server and answers
/// (`DeliveryWire.hpp`). When the host's end closes, what has not begun to be sent is given up and said to be
/// deferred. Returns the exit status of the process, as `runScriptCommand` does.
int runMailCommand(int socket);

}  // namespace vigil
