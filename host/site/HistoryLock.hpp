#pragma once

#include <string>

#include "platform/Result.hpp"

namespace vigil {

/// Keeps a second writer away from a history, for as long as it lives: a lock on "FILE-lock", which the
/// system gives back when a process ends. The file itself stays, since removing it would race with another's
/// opening.
class HistoryLock {
  public:
    static Result<HistoryLock> take(const std::string& file);
    HistoryLock(HistoryLock&& other) noexcept;
    HistoryLock& operator=(HistoryLock&&) = delete;
    ~HistoryLock();

  private:
    explicit HistoryLock(int descriptor) : m_descriptor(descriptor) {}
    int m_descriptor;
};

}  // namespace vigil
