#pragma once

#include <filesystem>
#include <string>

namespace vigil {

/// A folder with the demonstration's script, below the system's temporary one; gone with the object.
class DemoScripts {
  public:
    static constexpr const char* kName = "notify.sh";

    /// Throws std::runtime_error when the folder cannot be written.
    DemoScripts();
    DemoScripts(const DemoScripts&) = delete;
    DemoScripts& operator=(const DemoScripts&) = delete;
    ~DemoScripts();

    std::string folder() const { return m_folder.string(); }

  private:
    std::filesystem::path m_folder;
};

}  // namespace vigil
