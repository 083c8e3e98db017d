#include "tests/support/EffectJournal.hpp"

#include <utility>

namespace vigil {

void EffectJournal::add(std::string entry) {
    const std::lock_guard lock(m_mutex);
    m_entries.push_back(std::move(entry));
}

std::vector<std::string> EffectJournal::entries() const {
    const std::lock_guard lock(m_mutex);
    return m_entries;
}

}  // namespace vigil
