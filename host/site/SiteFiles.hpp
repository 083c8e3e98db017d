#pragma once

#include <string>

#include "platform/Result.hpp"

namespace vigil {

/// Makes the folders above a file; those that are new are for their user alone.
Result<Done> makeFolderOf(const std::string& path);

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
    /// An empty file for its user alone. An error names the folder that does not take it.
    Result<Done> make() const;
    /// Renames it, and waits until that is on the disk. Where a file stands already, that is an error unless
    /// it may be replaced.
    Result<Done> takePlace(bool ofAnother) const;

    /// An error that names it, as one of the file whose place it is to take.
    Error told(const Error& error) const;

  private:
    std::string m_path;
    std::string m_fresh;
};

/// Takes a database's files away, those beside it (its log, its lock) included.
void removeDatabase(const std::string& path);

}  // namespace vigil
