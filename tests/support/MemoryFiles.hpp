#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/Files.hpp"

namespace vigil {

/// Files that a test has put there. A folder lists what it was told, in that order. Any thread.
class MemoryFiles : public Files {
  public:
    /// The file alone; no folder comes to list it.
    void setFile(const std::string& path, std::string bytes);
    void removeFile(const std::string& path);
    void setFolder(const std::string& path, std::vector<std::string> names);

    Result<std::string> readUtf8(const std::string& path) override;
    std::optional<std::vector<std::string>> contentsOfDirectory(const std::string& path) override;

    /// The paths that `readUtf8` was asked for, in that order.
    std::vector<std::string> pathsRead() const;

  private:
    mutable std::mutex m_mutex;
    std::map<std::string, std::string> m_files;
    std::map<std::string, std::vector<std::string>> m_folders;
    std::vector<std::string> m_read;
};

}  // namespace vigil
