#pragma once

#include "platform/Files.hpp"

namespace vigil {

/// The longest file that is read whole: what plug-ins read are scripts that people wrote.
inline constexpr std::size_t kFileBytes = std::size_t{16} << 20;

/// The files of this machine. Never waits for a pipe or a terminal: what is no plain file is refused. Any
/// thread.
class SystemFiles : public Files {
  public:
    Result<std::string> readUtf8(const std::string& path) override;
    std::optional<std::vector<std::string>> contentsOfDirectory(const std::string& path) override;
};

}  // namespace vigil
