#include <cerrno>
#include <filesystem>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "host/command/Doctor_Probes.hpp"
#include "host/services/UniqueFd.hpp"

// The screen, the sound and the voice of a desktop session.

namespace vigil {
namespace {

namespace fs = std::filesystem;

bool isSocket(const std::string& path) {
    std::error_code unknown;
    return fs::is_socket(path, unknown);
}

/// Whether somebody listens there; a server that was killed leaves its socket behind. Asks nothing.
bool isListening(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) return isSocket(path);
    path.copy(address.sun_path, path.size());
    const UniqueFd socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    // EAGAIN: its queue is full, so somebody is there who does not take it
    return socket &&
           (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 ||
            errno == EAGAIN);
}

std::string runTimeFolder(const DoctorSurroundings& here) {
    return here.variable("XDG_RUNTIME_DIR").value_or("/run/user/" + std::to_string(getuid()));
}

/// "0" of ":0", ":0.1" and "unix:0"; nothing for a display of another machine.
std::optional<std::string> localNumber(const std::string& display) {
    const std::size_t colon = display.rfind(':');
    if (colon == std::string::npos) return std::nullopt;
    const std::string host = display.substr(0, colon);
    if (!host.empty() && host != "unix") return std::nullopt;
    return display.substr(colon + 1, display.find('.', colon) - colon - 1);
}

bool hasSoundCard(const DoctorSurroundings& here) {
    std::error_code failed;
    // pcmC0D0p: a device that plays
    for (const auto& entry : fs::directory_iterator(here.root + "/dev/snd", failed)) {
        const std::string name = entry.path().filename().string();
        if (name.starts_with("pcm") && name.ends_with('p') && access(entry.path().c_str(), W_OK) == 0)
            return true;
    }
    return false;
}

}  // namespace

Diagnosis displayProbe(const DoctorSurroundings& here) {
    const char* const remedy = "log in to a desktop session; all commands work without one";
    if (const auto wayland = here.variable("WAYLAND_DISPLAY")) {
        const std::string path = wayland->starts_with('/') ? *wayland : runTimeFolder(here) + "/" + *wayland;
        if (isSocket(here.root + path)) return Diagnosis::well("Wayland at " + path);
        if (!here.variable("DISPLAY")) return Diagnosis::finding("no Wayland server at " + path, remedy);
    }
    const auto display = here.variable("DISPLAY");
    if (!display) return Diagnosis::finding("neither WAYLAND_DISPLAY nor DISPLAY is set", remedy);
    const auto number = localNumber(*display);
    if (!number) return Diagnosis::well("X at " + *display + ", which is another machine and was not asked");
    const std::string path = "/tmp/.X11-unix/X" + *number;
    if (isSocket(here.root + path)) return Diagnosis::well("X at " + *display);
    return Diagnosis::finding("DISPLAY is " + *display + ", and no X server is at " + path, remedy);
}

Diagnosis soundProbe(const DoctorSurroundings& here) {
    const auto server = here.variable("PULSE_SERVER");
    if (server && !server->starts_with("unix:") && !server->starts_with('/'))
        return Diagnosis::well("a sound server at " + *server + ", which was not asked");
    std::vector<std::string> places = {runTimeFolder(here) + "/pulse/native",
                                       runTimeFolder(here) + "/pipewire-0"};
    if (server) places = {server->starts_with("unix:") ? server->substr(5) : *server};
    for (const std::string& place : places)
        if (isListening(here.root + place)) return Diagnosis::well("a sound server at " + place);
    if (hasSoundCard(here)) return Diagnosis::well("a sound card, without a sound server");
    return Diagnosis::finding("no sound server at " + places.front() + " and no sound card that may be used",
                              "start a sound server (pipewire-pulse or pulseaudio), or join the group audio");
}

Diagnosis speechProbe(const DoctorSurroundings& here) {
    const std::string& name = here.settings.speech.program;
    const char* const remedy = "install the package espeak-ng, or set speech.program";
    const bool isPath = name.find('/') != std::string::npos;
    if (const auto path = programPath(here, name))
        return Diagnosis::well(isPath ? *path : name + " is " + *path);
    std::error_code unknown;
    if (isPath && std::filesystem::is_regular_file(here.root + name, unknown))
        return Diagnosis::finding(name + " may not be executed", "chmod +x " + name);
    return Diagnosis::finding(isPath ? name + " is no program" : "the program " + name + " is not in PATH",
                              remedy);
}

}  // namespace vigil
