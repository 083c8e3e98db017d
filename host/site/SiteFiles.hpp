#pragma once

#include <string>
#include <string_view>

#include "platform/Result.hpp"

namespace vigil {

/// Makes the folders above a file; those that are new are for their user alone.
Result<Done> makeFolderOf(const std::string& path);

/// What an error says behind the path of a file that nobody asked to replace.
inline constexpr std::string_view kIsThere = "is there already, and was left as it is";

/// A file under a name of its own beside `path`, which takes that place when it is complete. Where it does
/// not, it goes with this object.
class FreshFile {
  public:
    explicit FreshFile(std::string path);
    FreshFile(const FreshFile&) = delete;
    FreshFile& operator=(const FreshFile&) = delete;
    ~FreshFile();

    /// Where it is until then; what lies there from before goes.
    const std::string& path() const { return m_fresh; }
    /// An empty file for its user alone.
    Result<Done> make() const;
    /// Renames it, and waits until that is on the disk. Where a file stands already, that is an error unless
    /// it may be replaced.
    Result<Done> takePlace(bool ofAnother) const;

  private:
    std::string m_path;
    std::string m_fresh;
};

/// Takes a database's files away, those beside it (its log, its lock) included.
void removeDatabase(const std::string& path);

}  // namespace vigil
