#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/services/HelperWire.hpp"

// What every sub-command does first and last: guards the process, takes its job, answers. One thread.

namespace vigil {

/// Blocks the signals that others send, so that only the end of the host's socket ends the work, and fills
/// the standard descriptors, so that nothing of ours is taken for one of them.
void guardProcess();

/// Waits for one whole message; nothing where the host is gone or sends what is none.
std::optional<std::string> receiveMessage(int socket);
/// The same for who takes more than one: what comes behind the message stays in the buffer.
std::optional<std::string> receiveMessage(int socket, WireBuffer& buffer);

/// False where the host is gone.
bool sendAll(int socket, std::string_view bytes);

}  // namespace vigil
