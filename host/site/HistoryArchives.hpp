#pragma once

#include <cstddef>
#include <mutex>
#include <unordered_map>

#include "host/site/HistoryRecords.hpp"

namespace vigil {

/// Which archives are worth their copy on the way to the writer. Any thread.
class HistoryArchives {
  public:
    /// Whether a plug-in's archive is to be kept; it then counts as its last one. `Saved` only where it
    /// differs from the last one and is HistoryStore::kBetweenSaved younger; others always.
    bool wants(const PlugInRecord& plugIn, Date date, ArchiveReason reason);

  private:
    struct Last {
        std::size_t hash = 0;
        Date date;
    };
    std::mutex m_mutex;
    std::unordered_map<RecordId, Last> m_last;
};

}  // namespace vigil
