#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "conditions/ConditionNode.hpp"
#include "host_contract/AgentProperty.hpp"
#include "host_contract/KeyTable.hpp"
#include "host_contract/Readings.hpp"
#include "platform/Export.hpp"

namespace vigil {

/// A condition whose keys have been looked up in one table: what is left is a flat program over the table's
/// slots. Judging looks nothing up and allocates nothing. Needs neither the tree nor the table any more. Any
/// thread.
class VIGIL_KIT BoundCondition {
  public:
    BoundCondition(const ConditionNode& tree, const KeyTable& table);

    std::uint64_t tableId() const { return m_tableId; }
    /// Whether the condition holds. The view must be of the table that this was bound to.
    bool holds(const ReadingsView& readings) const;

  private:
    friend class Binder;

    static constexpr KeyTable::Slot kNoSlot = std::numeric_limits<KeyTable::Slot>::max();

    /// A number of a reading lies in a closed interval or, negated, does not. Every operator is such a test;
    /// NaN lies in no interval, and neither does a reading that is not there.
    struct NumberTest {
        double low;
        double high;
        double AgentProperty::Parts::*member;
        KeyTable::Slot slot;
        bool negated;

        bool holds(const AgentProperty* const* bySlot) const;
    };
    /// A text of a reading stands in one of the wanted relations to a literal.
    struct TextTest {
        std::string literal;
        KeyTable::Slot slot;
        std::uint8_t wanted;  // bits of Relation

        bool holds(const AgentProperty* const* bySlot) const;
    };
    enum class StepKind : std::uint8_t { Numbers, Text, True, False };
    /// "Do all these tests hold?", and where to go on: at `target` when the answer is `jumpWhen`, else with
    /// the next step. True and False end the program.
    struct Step {
        StepKind kind = StepKind::False;
        bool jumpWhen = false;
        std::uint32_t first = 0;
        std::uint32_t count = 0;
        std::uint32_t target = 0;
    };

    bool allHold(const Step& step, const AgentProperty* const* bySlot) const;

    std::uint64_t m_tableId;
    bool m_tableIsEmpty;
    std::vector<Step> m_steps;
    std::vector<NumberTest> m_numbers;
    std::vector<TextTest> m_texts;
};

}  // namespace vigil
