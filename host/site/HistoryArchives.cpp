#include "host/site/HistoryArchives.hpp"

#include <functional>
#include <string>

#include "host/site/HistoryStore.hpp"

namespace vigil {

bool HistoryArchives::wants(const PlugInRecord& plugIn, Date date, ArchiveReason reason) {
    const std::lock_guard lock(m_mutex);
    const auto last = m_last.find(plugIn.id);
    const bool judged = reason == ArchiveReason::Saved && last != m_last.end();
    if (judged) {
        const double since = date.secondsSince(last->second.date);
        if (since >= 0 && since < HistoryStore::kBetweenSaved) return false;
    }
    const std::size_t hash = std::hash<std::string>()(plugIn.archive);
    if (judged && last->second.hash == hash) return false;
    m_last[plugIn.id] = {hash, date};
    return true;
}

}  // namespace vigil
