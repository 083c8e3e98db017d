#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <mutex>

#include "conditions/BoundCondition.hpp"
#include "conditions/ConditionNode.hpp"
#include "host_contract/Readings.hpp"
#include "platform/Export.hpp"

namespace vigil {

/// The bindings of one condition to the tables it has met last. Any thread.
class VIGIL_KIT BindingCache {
  public:
    /// A station changes its table rarely and a restored snapshot brings one of its own; more would only keep
    /// the bindings of tables that are gone.
    static constexpr std::size_t kMaxBindings = 4;

    BindingCache();
    ~BindingCache();
    BindingCache(const BindingCache&) = delete;
    BindingCache& operator=(const BindingCache&) = delete;

    /// Sets the condition, which must outlive the cache or its next reset. Before anybody judges.
    void reset(const ConditionNode* tree);
    /// False where no condition is set.
    bool holds(const ReadingsView& readings) const;
    /// The condition bound to a table; nothing where no condition is set.
    std::shared_ptr<const BoundCondition> binding(const KeyTable& table) const {
        return m_tree ? bindingFor(table) : nullptr;
    }
    /// How many bindings are remembered, and how many have been made.
    std::size_t size() const;
    std::size_t made() const;

  private:
    std::shared_ptr<const BoundCondition> bindingFor(const KeyTable& table) const;

    const ConditionNode* m_tree = nullptr;
    mutable std::mutex m_mutex;
    mutable std::array<std::shared_ptr<const BoundCondition>, kMaxBindings> m_recent;  // latest first
    mutable std::size_t m_made = 0;
};

}  // namespace vigil
