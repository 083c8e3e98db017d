#include "host/command/Commands.hpp"

namespace vigil {

const std::vector<AddCommand>& allCommands() {
    static const std::vector<AddCommand> commands = {
        addDemoCommand,    addHistoryCommand, addWhyCommand,    addPlotCommand,
        addReplayCommand,  addCheckCommand,   addEvalCommand,   addExplainCommand,
        addMonitorCommand, addDoctorCommand,  addPluginCommand,
    };
    return commands;
}

}  // namespace vigil
