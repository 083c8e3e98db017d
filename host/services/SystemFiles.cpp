#include "host/services/SystemFiles.hpp"

#include <cerrno>
#include <memory>
#include <system_error>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vigil {
namespace {

class Descriptor {
  public:
    explicit Descriptor(int number) : m_number(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (m_number >= 0) close(m_number);
    }
    int number() const { return m_number; }

  private:
    int m_number;
};

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

Error failed(const std::string& path, const std::string& reason) {
    return {"\"" + path + "\" cannot be read: " + reason};
}

std::string systemReason() {
    return std::generic_category().message(errno);
}

}  // namespace

Result<std::string> SystemFiles::readUtf8(const std::string& path) {
    if (path.find('\0') != std::string::npos) return failed(path, "a path has no NUL character");
    // Not blocking: a pipe without a writer would otherwise hold the caller for ever.
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (file.number() < 0 || fstat(file.number(), &status) != 0) return failed(path, systemReason());
    if (S_ISDIR(status.st_mode)) return failed(path, "it is a folder");
    if (!S_ISREG(status.st_mode)) return failed(path, "it is no plain file");
    std::string text;
    char piece[1 << 16];
    while (true) {
        const ssize_t got = read(file.number(), piece, sizeof piece);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return failed(path, systemReason());
        if (got == 0) break;
        text.append(piece, static_cast<std::size_t>(got));
        if (text.size() > kFileBytes) return failed(path, "it is longer than 16 MiB");
    }
    if (!isValidUtf8(text)) return failed(path, "it is not UTF-8");
    return text;
}

std::optional<std::vector<std::string>> SystemFiles::contentsOfDirectory(const std::string& path) {
    if (path.find('\0') != std::string::npos) return std::nullopt;
    const std::unique_ptr<DIR, CloseFolder> folder(opendir(path.c_str()));
    if (!folder) return std::nullopt;
    std::vector<std::string> names;
    while (true) {
        errno = 0;
        const dirent* entry = readdir(folder.get());
        if (!entry) break;
        const std::string name = entry->d_name;
        if (name != "." && name != "..") names.push_back(name);
    }
    if (errno != 0) return std::nullopt;
    return names;
}

}  // namespace vigil
