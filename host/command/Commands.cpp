#include "host/command/Commands.hpp"

namespace vigil {

const std::vector<AddCommand>& allCommands() {
    static const std::vector<AddCommand> commands = {
        addDemoCommand, addReplayCommand,  addCheckCommand,   addEvalCommand,   addExplainCommand,
        addSiteCommand, addStationCommand, addMonitorCommand, addDoctorCommand, addPluginCommand,
    };
    return commands;
}

}  // namespace vigil
