#include "conditions/BindingCache.hpp"

#include <algorithm>

namespace vigil {
namespace {

const KeyTable& emptyTable() {
    static const auto table = KeyTable::make({});
    return *table;
}

}  // namespace

BindingCache::BindingCache() = default;
BindingCache::~BindingCache() = default;

void BindingCache::reset(const ConditionNode* tree) {
    const std::lock_guard lock(m_mutex);
    m_tree = tree;
    m_recent.fill(nullptr);
}

bool BindingCache::holds(const ReadingsView& readings) const {
    return m_tree && bindingFor(readings.table ? *readings.table : emptyTable())->holds(readings);
}

std::shared_ptr<const BoundCondition> BindingCache::bindingFor(const KeyTable& table) const {
    const std::lock_guard lock(m_mutex);
    if (m_recent.front() && m_recent.front()->tableId() == table.id()) return m_recent.front();
    auto place = std::find_if(m_recent.begin(), m_recent.end(), [&](const auto& binding) {
        return !binding || binding->tableId() == table.id();
    });
    if (place == m_recent.end()) --place;  // the one unused for longest gives way
    if (!*place || (*place)->tableId() != table.id()) {
        *place = std::make_shared<const BoundCondition>(*m_tree, table);
        ++m_made;
    }
    std::rotate(m_recent.begin(), place, place + 1);
    return m_recent.front();
}

std::size_t BindingCache::size() const {
    const std::lock_guard lock(m_mutex);
    return static_cast<std::size_t>(std::count_if(m_recent.begin(), m_recent.end(),
                                                  [](const auto& binding) { return binding != nullptr; }));
}

std::size_t BindingCache::made() const {
    const std::lock_guard lock(m_mutex);
    return m_made;
}

}  // namespace vigil
