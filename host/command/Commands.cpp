#include "host/command/Commands.hpp"

namespace vigil {

const std::vector<AddCommand>& allCommands() {
    static const std::vector<AddCommand> commands = {
        addDemoCommand,    addRunCommand,     addStatusCommand,  addSiteCommand,    addStationCommand,
        addMonitorCommand, addActionsCommand, addHistoryCommand, addWhyCommand,     addPlotCommand,
        addReplayCommand,  addCheckCommand,   addEvalCommand,    addExplainCommand, addSettingsCommand,
        addTestCommand,    addDoctorCommand,  addPluginCommand,
    };
    return commands;
}

}  // namespace vigil
