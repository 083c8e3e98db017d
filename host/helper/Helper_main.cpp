#include <cstdio>
#include <string_view>

#include "host/helper/MailCommand.hpp"
#include "host/helper/PlayerCommand.hpp"
#include "host/helper/ProgramCommand.hpp"
#include "host/helper/ScriptCommand.hpp"

int main(int count, char** words) {
    const std::string_view command = count == 2 ? words[1] : "";
    if (command == "script") return vigil::runScriptCommand(0);
    if (command == "mail") return vigil::runMailCommand(0);
    if (command == "player") return vigil::runPlayerCommand(0);
    if (command == "program") return vigil::runProgramCommand(0);
    std::fputs("vigil-helper is started by vigil itself: vigil-helper script|player|mail|program\n", stderr);
    return 2;
}
