#pragma once

#include <vector>

#include <CLI/App.hpp>

#include "host/command/CommandContext.hpp"

// A sub-command is one file Command_X.cpp with one function addXCommand, which is declared here and named in
// the table of Commands.cpp. It adds the command with its options; the command's callback sets the status:
//
//     void addGreetCommand(CLI::App& app, CommandContext& context) {
//         auto* command = app.add_subcommand("greet", "Say hello");
//         command->footer("Examples:\n  vigil greet");
//         command->callback([&context] { context.output.write("hello\n"); });
//     }
//
// An option's place in memory must outlive the function: keep options in a shared struct that the callback
// holds.

namespace vigil {

using AddCommand = void (*)(CLI::App& app, CommandContext& context);

void addActionsCommand(CLI::App& app, CommandContext& context);
void addCheckCommand(CLI::App& app, CommandContext& context);
void addDemoCommand(CLI::App& app, CommandContext& context);
void addDoctorCommand(CLI::App& app, CommandContext& context);
void addEvalCommand(CLI::App& app, CommandContext& context);
void addExplainCommand(CLI::App& app, CommandContext& context);
void addHistoryCommand(CLI::App& app, CommandContext& context);
void addMonitorCommand(CLI::App& app, CommandContext& context);
void addPlotCommand(CLI::App& app, CommandContext& context);
void addPluginCommand(CLI::App& app, CommandContext& context);
void addReplayCommand(CLI::App& app, CommandContext& context);
void addRunCommand(CLI::App& app, CommandContext& context);
void addSettingsCommand(CLI::App& app, CommandContext& context);
void addSiteCommand(CLI::App& app, CommandContext& context);
void addStationCommand(CLI::App& app, CommandContext& context);
void addStatusCommand(CLI::App& app, CommandContext& context);
void addTestCommand(CLI::App& app, CommandContext& context);
void addWhyCommand(CLI::App& app, CommandContext& context);

/// Every sub-command, in the order in which `--help` lists them.
const std::vector<AddCommand>& allCommands();

}  // namespace vigil
