#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/Export.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// Files as plug-ins read them. Any thread.
class VIGIL_KIT Files {
  public:
    virtual ~Files();
    /// The whole file. An error for a folder, a missing or unreadable file and for invalid UTF-8; an empty
    /// file is an empty text.
    virtual Result<std::string> readUtf8(const std::string& path) = 0;
    /// The names of all entries of a folder, "." and ".." apart, in the folder's own order; nothing when it
    /// cannot be listed.
    virtual std::optional<std::vector<std::string>> contentsOfDirectory(const std::string& path) = 0;
};

/// Whether the bytes are UTF-8 without overlong forms and surrogates.
VIGIL_KIT bool isValidUtf8(std::string_view bytes);

}  // namespace vigil
