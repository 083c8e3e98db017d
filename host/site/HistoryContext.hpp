#pragma once

#include <map>
#include <vector>

#include "host/site/HistoryEvents.hpp"

namespace vigil {

/// What a new file has to be told when the old one is set aside in the middle of a run: what the stations are
/// called, who watches, and by which archive. The writer's thread.
class HistoryContext {
  public:
    void note(const HistoryEvent& event);
    std::vector<HistoryEvent> events() const;

  private:
    std::map<RecordId, StationNamed> m_names;
    std::map<RecordId, ArchiveTaken> m_archives;
    std::map<RecordId, WatchBegan> m_watches;
};

}  // namespace vigil
