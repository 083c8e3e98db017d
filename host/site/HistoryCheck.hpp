#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <thread>

#include <SQLiteCpp/Database.h>

namespace vigil {

/// Reads a whole history on a thread of its own to see whether it is sound, while others write it. One thread
/// asks.
class HistoryCheck {
  public:
    explicit HistoryCheck(const std::string& file);
    /// Gives the check up.
    ~HistoryCheck();

    bool isOver() const { return m_over; }
    /// Whether it found damage; to be asked when it is over.
    bool foundDamage() const { return m_damaged; }

  private:
    void run(const std::string& file);

    std::atomic<bool> m_over{false};
    std::atomic<bool> m_damaged{false};
    std::atomic<bool> m_givenUp{false};
    std::thread m_thread;
};

}  // namespace vigil
