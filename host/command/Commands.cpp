#include "host/command/Commands.hpp"

namespace vigil {

const std::vector<AddCommand>& allCommands() {
    static const std::vector<AddCommand> commands = {
        addDemoCommand,    addHistoryCommand, addReplayCommand, addCheckCommand,
        addEvalCommand,    addExplainCommand, addRunCommand,    addStatusCommand,
        addActionsCommand, addMonitorCommand, addDoctorCommand, addPluginCommand,
    };
    return commands;
}

}  // namespace vigil
