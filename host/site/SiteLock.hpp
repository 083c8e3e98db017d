#pragma once

#include <memory>
#include <string>

#include "host/site/SiteFile.hpp"

namespace vigil {

/// Holds a site for one process, by a lock on a file beside it that bears the process's id. The lock ends
/// with the process however that ends; the file stays, since removing it would let two processes lock two
/// files.
class SiteLock {
  public:
    /// Locked: the message tells which process has it.
    static Result<std::unique_ptr<SiteLock>, SiteError> take(const std::string& site);

    explicit SiteLock(int descriptor) : m_descriptor(descriptor) {}
    SiteLock(const SiteLock&) = delete;
    SiteLock& operator=(const SiteLock&) = delete;
    ~SiteLock();

    /// Takes the lock's file away: of a site that has not come about, while the lock is held.
    static void discard(const std::string& site);

    /// The process that runs the site, 0 where none does, as far as the file beside it can be read.
    static long holder(const std::string& site);

  private:
    int m_descriptor;
};

}  // namespace vigil
