#pragma once

#include <optional>
#include <string>

#include <sys/stat.h>
#include <sys/types.h>

#include "host/services/UniqueFd.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// A file that grows, a pipe with a name, a device, or standard input: what it is, and whether its path still
/// leads to it. Nothing here waits. One thread at a time.
class FollowedFile {
  public:
    enum class Change {
        None,
        Gone,      ///< nothing stands at the path
        Replaced,  ///< another file stands there
        CutOff,    ///< it is shorter than what has been read
    };

    /// `path` "-" is standard input, which stays open. An error where it is not there or may not be read.
    static Result<FollowedFile> open(const std::string& path);

    int fd() const { return m_path == "-" ? 0 : m_own.get(); }
    /// An ordinary file: it has an end to which more is added, and cannot be waited for.
    bool isOrdinary() const { return S_ISREG(m_status.st_mode); }
    bool isStandardInput() const { return m_path == "-"; }
    bool isFolder() const { return S_ISDIR(m_status.st_mode); }

    /// Of an ordinary file: goes to its end. Gives whether it ends inside a line.
    bool goToEnd();
    /// Goes back to the beginning.
    void goToBegin();
    /// Asks the path. Standard input and devices never change.
    Change change() const;

  private:
    FollowedFile(std::string path, UniqueFd own, const struct stat& status);

    std::string m_path;
    UniqueFd m_own;
    struct stat m_status;
};

}  // namespace vigil
