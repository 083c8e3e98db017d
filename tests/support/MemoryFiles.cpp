#include "tests/support/MemoryFiles.hpp"

#include <utility>

namespace vigil {

void MemoryFiles::setFile(const std::string& path, std::string bytes) {
    const std::lock_guard lock(m_mutex);
    m_files[path] = std::move(bytes);
}

void MemoryFiles::removeFile(const std::string& path) {
    const std::lock_guard lock(m_mutex);
    m_files.erase(path);
}

void MemoryFiles::setFolder(const std::string& path, std::vector<std::string> names) {
    const std::lock_guard lock(m_mutex);
    m_folders[path] = std::move(names);
}

Result<std::string> MemoryFiles::readUtf8(const std::string& path) {
    const std::lock_guard lock(m_mutex);
    m_read.push_back(path);
    if (m_folders.contains(path)) return Error{path + " is a folder"};
    const auto found = m_files.find(path);
    if (found == m_files.end()) return Error{path + " does not exist"};
    if (!isValidUtf8(found->second)) return Error{path + " is not UTF-8"};
    return found->second;
}

std::optional<std::vector<std::string>> MemoryFiles::contentsOfDirectory(const std::string& path) {
    const std::lock_guard lock(m_mutex);
    const auto found = m_folders.find(path);
    if (found == m_folders.end()) return std::nullopt;
    return found->second;
}

std::vector<std::string> MemoryFiles::pathsRead() const {
    const std::lock_guard lock(m_mutex);
    return m_read;
}

}  // namespace vigil
