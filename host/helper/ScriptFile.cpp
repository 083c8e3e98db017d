#include "host/helper/ScriptFile.hpp"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

#include "host/services/UniqueFd.hpp"

namespace vigil {
namespace {

// 0 or the reason.
int writeFile(const std::string& path, std::string_view bytes) {
    UniqueFd fd(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0700));
    if (!fd) return errno;
    while (!bytes.empty()) {
        const ssize_t count = ::write(fd.get(), bytes.data(), bytes.size());
        if (count > 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EINTR)
            return errno;
    }
    return 0;
}

constexpr std::string_view kBlanks = " \t";

}  // namespace

Result<ScriptFile> ScriptFile::write(const std::vector<std::string>& folders, std::string_view source) {
    std::string why = "there is no folder for it";
    for (const std::string& folder : folders) {
        int failed = ::mkdir(folder.c_str(), 0700) == 0 ? 0 : errno;
        if (failed == 0) {
            ScriptFile file(folder);
            failed = writeFile(file.path(), source);
            if (failed == 0) return file;
        }
        why = "its text could not be kept in " + folder + ": " + std::strerror(failed);
    }
    return Error{why};
}

ScriptFile::ScriptFile(ScriptFile&& other) noexcept : m_folder(std::exchange(other.m_folder, {})) {}

ScriptFile::~ScriptFile() {
    std::error_code gone;  // what cannot be removed is the system's to clear; the result matters more
    if (!m_folder.empty()) std::filesystem::remove_all(m_folder, gone);
}

std::optional<ScriptInterpreter> scriptInterpreter(std::string_view source) {
    if (!source.starts_with("#!")) return std::nullopt;
    std::string_view line = source.substr(2, source.find_first_of(std::string_view("\n\0", 2)) - 2);
    line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
    if (line.empty()) return std::nullopt;
    line.remove_suffix(line.size() - line.find_last_not_of(kBlanks) - 1);
    const std::size_t end = line.find_first_of(kBlanks);
    ScriptInterpreter interpreter{std::string(line.substr(0, end)), std::nullopt};
    if (end != std::string_view::npos)
        interpreter.argument = line.substr(line.find_first_not_of(kBlanks, end));
    return interpreter;
}

}  // namespace vigil
