#pragma once

#include <functional>
#include <string>
#include <utility>

#include "platform/Files.hpp"

namespace vigil {

/// Files that remember which script was read last: a script is handed over as its text, and people want to
/// read its name. Main thread for scripts; else as the files below.
class NotedFiles : public Files {
  public:
    /// `files` is the caller's and outlives this; `folder` is the scripts', without a final "/".
    /// `missed` hears of each script that could not be read, by its name and the reason.
    using Missed = std::function<void(const std::string& name, const std::string& reason)>;
    NotedFiles(Files& files, std::string folder, Missed missed)
        : m_files(files), m_folder(std::move(folder) + "/"), m_missed(std::move(missed)) {}

    Result<std::string> readUtf8(const std::string& path) override;
    std::optional<std::vector<std::string>> contentsOfDirectory(const std::string& path) override {
        return m_files.contentsOfDirectory(path);
    }

    /// The name of the script that has this text, if it was the last one read; else empty.
    std::string nameOf(const std::string& source) const;

  private:
    Files& m_files;
    const std::string m_folder;
    const Missed m_missed;
    std::string m_name;
    std::string m_source;
};

}  // namespace vigil
