#include "host/command/Commands.hpp"

namespace vigil {

const std::vector<AddCommand>& allCommands() {
    static const std::vector<AddCommand> commands = {addCheckCommand, addEvalCommand};
    return commands;
}

}  // namespace vigil
