#include "host/run/Secrets.hpp"

#include <cerrno>
#include <cstring>
#include <fstream>

#include <sys/stat.h>

#include "host/kit/LiveWorld.hpp"

namespace vigil {
namespace {

std::string trimmed(const std::string& text) {
    const auto begin = text.find_first_not_of(" \t\r");
    if (begin == std::string::npos) return {};
    return text.substr(begin, text.find_last_not_of(" \t\r") - begin + 1);
}

}  // namespace

std::string Secrets::defaultFile() {
    const std::string scripts = defaultScriptsFolder();
    return scripts.substr(0, scripts.rfind('/')) + "/secrets";
}

Result<std::optional<std::string>> Secrets::named(const std::string& name) const {
    struct stat status {};
    if (::stat(m_file.c_str(), &status) != 0)
        return Error{m_file + ": " + std::strerror(errno) + "; write \"" + name +
                     " = VALUE\" into it, mode 600"};
    if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0)
        return Error{m_file + ": others may read it; `chmod 600 " + m_file + "` mends that"};
    std::ifstream file(m_file);
    if (!file)
        return Error{m_file + ": " + std::strerror(errno) + "; `chown` it to the user that runs Vigil"};
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        line = trimmed(line);
        if (line.empty() || line.front() == '#') continue;
        const auto equals = line.find('=');
        if (equals == std::string::npos)
            return Error{m_file + ":" + std::to_string(number) + ": expected NAME = VALUE"};
        if (trimmed(line.substr(0, equals)) == name) return std::optional(trimmed(line.substr(equals + 1)));
    }
    if (file.bad()) return Error{m_file + ": " + std::strerror(errno)};
    return std::optional<std::string>();
}

std::function<std::optional<std::string>(const std::string&)> userSecrets(
    std::function<void(const std::string&)> tell) {
    return [tell = std::move(tell)](const std::string& name) -> std::optional<std::string> {
        auto secret = Secrets(Secrets::defaultFile()).named(name);
        if (secret) return std::move(secret).value();
        tell(secret.error().message);
        return std::nullopt;
    };
}

}  // namespace vigil
