#pragma once

#include <string>
#include <string_view>

namespace vigil {

/// A folder of its own for one test, removed with all that is in it at the end. Throws std::runtime_error
/// where the machine does not give one.
class TemporaryFolder {
  public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    /// Without a final "/".
    const std::string& path() const { return m_path; }
    /// Writes the file and gives its path.
    std::string write(const std::string& name, std::string_view bytes) const;
    /// Makes the folder inside and gives its path.
    std::string makeFolder(const std::string& name) const;

  private:
    std::string m_path;
};

}  // namespace vigil
