#include "host/command/OpenWindow.hpp"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

namespace vigil {
namespace {

bool isSet(const char* variable) {
    const char* value = std::getenv(variable);
    return value && *value;
}

}  // namespace

std::string openWindow(const std::string& programFolder) {
    const std::string window = programFolder + "/vigil-window";
    if (::access(window.c_str(), X_OK) != 0) return "this installation has no window";
    if (!isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY") && !isSet("QT_QPA_PLATFORM"))
        return "there is no display for the window";
    ::execl(window.c_str(), window.c_str(), static_cast<char*>(nullptr));
    return "the window cannot be started: " + std::string(std::strerror(errno));
}

}  // namespace vigil
