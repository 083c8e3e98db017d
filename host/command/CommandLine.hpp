#pragma once

#include <string>
#include <vector>

#include "host/command/CommandContext.hpp"
#include "host/command/Commands.hpp"

namespace vigil {

/// Builds the whole tree of commands and options: what is parsed, and what `--help` tells of. The commands
/// keep the context. Main thread.
void describeCommands(CLI::App& app, const std::vector<AddCommand>& commands, CommandContext& context);

/// Runs one command line (without the program's own name) against the given table of commands and returns how
/// the program is to end. Catches whatever a command throws. Main thread.
ExitStatus runCommandLine(const std::vector<std::string>& arguments, const std::vector<AddCommand>& commands,
                          Output& output, const std::string& programFolder);

/// The version of this build, as in "0.1.0".
const char* versionText();

}  // namespace vigil
