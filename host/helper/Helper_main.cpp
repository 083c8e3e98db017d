#include <cstdio>
#include <cstring>

#include "host/helper/ScriptCommand.hpp"

int main(int count, char** words) {
    if (count == 2 && std::strcmp(words[1], "script") == 0) return vigil::runScriptCommand(0);
    std::fputs("vigil-helper is started by vigil itself: vigil-helper script\n", stderr);
    return 2;
}
