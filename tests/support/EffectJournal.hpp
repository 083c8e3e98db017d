#pragma once

#include <mutex>
#include <string>
#include <vector>

namespace vigil {

/// What the fakes of a world did, in one order for all of them. Any thread.
class EffectJournal {
  public:
    void add(std::string entry);
    std::vector<std::string> entries() const;

  private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_entries;
};

}  // namespace vigil
