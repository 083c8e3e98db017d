#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

// What the program's `--help` knows, as plain values: from it the manual pages and the completions are
// written, so that none of them says anything else than the program. Main thread.

namespace vigil {

/// What stands behind an option, or in a position by itself.
struct ArgumentNote {
    std::string name;                  ///< as in "FILE"; empty for an option that takes nothing
    std::vector<std::string> choices;  ///< the words that are taken; empty where any is
    std::string least, most;           ///< the bounds of a number; empty where there are none
    bool repeats = false;              ///< several may stand here

    bool isFile() const { return name == "FILE"; }
    bool isFolder() const { return name == "FOLDER"; }
};

struct OptionNote {
    std::vector<std::string> names;  ///< "-h", "--help"; empty for an argument by position
    ArgumentNote argument;
    std::string description;
    bool required = false;
};

/// The lines that a command says behind its options.
struct FooterNote {
    std::vector<std::string> remarks;   ///< in lines; one that begins with a blank is kept as it is
    std::vector<std::string> examples;  ///< without the blanks in front
};

struct CommandNote {
    std::string path;  ///< "vigil monitor create"
    std::string description;
    FooterNote footer;
    std::vector<OptionNote> options;
    std::vector<OptionNote> positions;  ///< in order
    std::vector<CommandNote> commands;
    bool needsCommand = false;  ///< does nothing without one of `commands`

    /// The last word of the path.
    std::string name() const { return path.substr(path.rfind(' ') + 1); }
};

/// The command and everything below it. Hidden commands and options (of the group "") are left out.
CommandNote commandTree(const CLI::App& app);

/// The command and all below it, each before its own, in the order of `--help`.
std::vector<const CommandNote*> allOf(const CommandNote& command);

}  // namespace vigil
