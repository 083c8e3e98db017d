#pragma once

#include <string>

#include "platform/Files.hpp"

namespace vigil {

/// Files that remember which script was read last: a script is handed over as its text, and people want to
/// read its name. Main thread for scripts; else as the files below.
class NotedFiles : public Files {
  public:
    /// `files` is the caller's and outlives this; `folder` is the scripts', without a final "/".
    NotedFiles(Files& files, std::string folder) : m_files(files), m_folder(std::move(folder) + "/") {}

    Result<std::string> readUtf8(const std::string& path) override;
    std::optional<std::vector<std::string>> contentsOfDirectory(const std::string& path) override {
        return m_files.contentsOfDirectory(path);
    }

    /// The name of the script that has this text, if it was the last one read; else empty.
    std::string nameOf(const std::string& source) const;

  private:
    Files& m_files;
    const std::string m_folder;
    std::string m_name;
    std::string m_source;
};

}  // namespace vigil
