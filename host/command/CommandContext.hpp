#pragma once

#include <string>

#include "host/command/ExitStatus.hpp"
#include "host/command/Output.hpp"

namespace vigil {

/// What every sub-command gets: where it writes, what it knows of its installation, and how the program is
/// to end.
struct CommandContext {
    Output& output;
    std::string programFolder;  ///< of the running program, without a final "/"; empty when unknown
    ExitStatus status = ExitStatus::Yes;
};

}  // namespace vigil
