#include <cstdio>
#include <string_view>

#include "host/helper/media/MailCommand.hpp"
#include "host/helper/media/PlayerCommand.hpp"

int main(int count, char** words) {
    const std::string_view command = count == 2 ? words[1] : "";
    if (command == "mail") return vigil::runMailCommand(0);
    if (command == "player") return vigil::runPlayerCommand(0);
    std::fputs("vigil-helper-media is started by vigil itself: vigil-helper-media player|mail\n", stderr);
    return 2;
}
