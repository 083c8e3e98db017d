#pragma once

#include <cstdint>
#include <vector>

#include "conditions/ConditionNode.hpp"
#include "conditions/Program.hpp"
#include "host_contract/KeyTable.hpp"
#include "host_contract/Readings.hpp"
#include "platform/Export.hpp"

namespace vigil {

/// A condition whose keys have been looked up in one table: what is left is a flat program over the table's
/// slots. Judging looks nothing up and allocates nothing, except that a text compared with a reading that has
/// none of its own is built in a buffer which each thread makes once. Needs neither the tree nor the table
/// any more. Any thread.
class VIGIL_KIT BoundCondition {
  public:
    BoundCondition(const ConditionNode& tree, const KeyTable& table);

    std::uint64_t tableId() const { return m_tableId; }
    /// The slots that judging looks at, in rising order; what stands at the others makes no difference.
    const std::vector<KeyTable::Slot>& slots() const { return m_slots; }
    /// Whether the condition holds. The view must be of the table that this was bound to.
    bool holds(const ReadingsView& readings) const;

  private:
    std::uint64_t m_tableId;
    Program m_program;
    std::vector<KeyTable::Slot> m_slots;
};

}  // namespace vigil
